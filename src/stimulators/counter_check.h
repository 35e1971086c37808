#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace corv::stimulators {

// What keeps a counter formula, or a reference to a wire, from being used.
struct CounterProblem {
    std::string_view place;  // within the formula; empty at its end
    std::string sentence;
};

// The first problem of a formula, nothing when it is fine. `alone` tells that the formula drives
// one stimulus with its whole value and not the wires of a vector. Nothing is registered.
std::optional<CounterProblem> CheckCounter(std::string_view formula, bool alone);

}  // namespace corv::stimulators
