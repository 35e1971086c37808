#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace corv::stimulus {

// What keeps a custom formula from replaying its signal.
struct CustomProblem {
    std::string_view place;  // within the formula
    std::string sentence;
    bool warning = false;  // the formula is accepted all the same
};

// The first problem of a formula, nothing when its signal can be had. `alone` tells that the
// formula drives one stimulus and not the elements of a vector.
std::optional<CustomProblem> CheckCustomFormula(std::string_view formula, bool alone);

}  // namespace corv::stimulus
