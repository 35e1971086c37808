#pragma once

#include <cstddef>
#include <new>

namespace corv::platform {

// Library-wide state that is made on first use and never destroyed, so that it can be used in
// whatever order a process ends its objects. Its owner releases its content when the library is
// detached. It is not protected against use by several threads.
template <class State>
class Immortal {
public:
    Immortal() : state_(*new (place_) State) {}
    Immortal(const Immortal&) = delete;
    Immortal& operator=(const Immortal&) = delete;

    State& operator*() noexcept { return state_; }

private:
    alignas(State) std::byte place_[sizeof(State)];
    State& state_;
};

}  // namespace corv::platform
