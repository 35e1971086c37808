#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace corv::stimulus {

// The reason why a custom formula does not replay its signal.
struct CustomProblem {
    std::string_view place;  // within the formula
    std::string sentence;
    bool warning = false;  // the formula is accepted nevertheless
};

// Returns the first problem of a formula, nullopt if its signal can be replayed. `alone` means that
// the formula drives one stimulus, not the elements of a vector. The recording is opened, since
// nothing less shows whether it has the signal.
std::optional<CustomProblem> CheckCustomFormula(std::string_view formula, bool alone);

}  // namespace corv::stimulus
