#pragma once

#include <string>
#include <vector>

#include "corv/stimulus/check_formula.h"

namespace corv::cli {

// Returns what is odd about a stimulator-info record, in the order of the text. There is an error
// among the problems if CStiParser cannot read the record.
std::vector<Problem> CheckRecord(const std::string& text);

}  // namespace corv::cli
