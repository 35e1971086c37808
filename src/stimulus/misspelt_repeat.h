#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "stimulus/formula_text.h"

namespace corv::stimulus {

// Returns the parameter that a value was probably meant to be: "-r 40" for "--repeat 40" or "-r40".
// A word without a dash counts only if there is no comma before it, since it may be a literal.
std::optional<std::string> MisspeltRepeat(const FormulaItem& item, std::string_view formula);

}  // namespace corv::stimulus
