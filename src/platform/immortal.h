#pragma once

#include <cstddef>
#include <new>

namespace corv::platform {

// Library-wide state that is made on first use and never destroyed, so that it serves in whatever
// order a process ends its objects. What it holds is given back when the library is detached.
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
