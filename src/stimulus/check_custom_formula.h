#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace corv::stimulus {

// What keeps a custom formula from replaying its signal.
struct CustomProblem {
    std::string_view place;  // within the formula
    std::string sentence;
};

// The first problem of a formula, nothing when its signal can be had.
std::optional<CustomProblem> CheckCustomFormula(std::string_view formula);

}  // namespace corv::stimulus
