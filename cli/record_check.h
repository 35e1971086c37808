#pragma once

#include <string>
#include <vector>

#include "corv/stimulus/check_formula.h"

namespace corv::cli {

// What is odd about a stimulator-info record, in the order of the text. There is an error among it
// when CStiParser can't read the record.
std::vector<FormulaProblem> CheckRecord(const std::string& text);

}  // namespace corv::cli
