#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace corv::stimulators {

// The reason why a counter formula, or a reference to a wire, cannot be used.
struct CounterProblem {
    std::string_view place;  // within the formula; empty at its end
    std::string sentence;
};

// Returns the first problem of a formula, nullopt if it is fine. `alone` means that the formula
// drives one stimulus with its whole value, not the wires of a vector. Nothing is registered.
std::optional<CounterProblem> CheckCounter(std::string_view formula, bool alone);

}  // namespace corv::stimulators
