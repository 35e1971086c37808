#pragma once

#include <exception>
#include <utility>

namespace corv::platform {

// The border of an exported operation, where exceptions end: runs the work and returns its result.
// If out of memory, or if a length exceeds what a container takes, returns the operation's failure
// instead.
template <class Result, class Work>
Result Guarded(Result failure, Work&& work) noexcept {
    try {
        return std::forward<Work>(work)();
    } catch (const std::exception&) {
        return failure;
    }
}

// The same for work without a result: returns whether it was done.
template <class Work>
bool Done(Work&& work) noexcept {
    try {
        std::forward<Work>(work)();
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

}  // namespace corv::platform
