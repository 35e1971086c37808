#pragma once

#include <cstdint>
#include <utility>

#include "tree/nesting.h"

// Operations that go down a tree do so through the interfaces of its signals, which cannot carry
// how deep they already are. What an operation must know of itself in order to end on any tree,
// stream and recording is kept here.
namespace corv::signals {
class LoadStream;
class ReaderLoad;
}  // namespace corv::signals

namespace corv::tree {

// The state of the operations that are running now on a thread.
struct RunningOperations {
    signals::LoadStream* load = nullptr;
    signals::ReaderLoad* reader_load = nullptr;
    int save_depth = 0;
    int find_depth = 0;
    int pass_on_depth = 0;
    int descent_depth = 0;
    std::uint64_t pass_on_number = 0;
};
RunningOperations& Running() noexcept;

// Makes an operation one level deeper for as long as the object lives.
class Level {
public:
    explicit Level(int& depth) noexcept : depth_(++depth) {}
    Level(const Level&) = delete;
    Level& operator=(const Level&) = delete;
    ~Level() { --depth_; }

    bool IsAllowed() const noexcept { return depth_ <= kMostNesting; }

private:
    int& depth_;
};

// One signal's part in an operation that each signal passes on to its members. It ends on any tree,
// even on one that contains itself; `is_running` belongs to the signal.
class Descent {
public:
    explicit Descent(bool& is_running) noexcept
        : level_(Running().descent_depth),
          is_running_(is_running),
          was_running_(std::exchange(is_running, true)) {}
    Descent(const Descent&) = delete;
    Descent& operator=(const Descent&) = delete;
    ~Descent() { is_running_ = was_running_; }

    bool IsAllowed() const noexcept { return level_.IsAllowed() && !was_running_; }

private:
    const Level level_;
    bool& is_running_;
    const bool was_running_;
};

}  // namespace corv::tree
