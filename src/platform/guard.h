#pragma once

#include <exception>
#include <utility>

namespace corv::platform {

// The border of an exported operation: runs the work and gives its result; when memory runs out (or
// a length passes what a container takes), the operation's failure instead.
template <class Result, class Work>
Result Guarded(Result failure, Work&& work) noexcept {
    try {
        return std::forward<Work>(work)();
    } catch (const std::exception&) {
        return failure;
    }
}

// The same for work without a result.
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
