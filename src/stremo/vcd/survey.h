#pragma once

#include "stremo/vcd/changes.h"

namespace corv::vcd {

// Finds out what the declarations of a file leave open and only its changes, up to `end`, decide:
//
//     texts       the variable becomes as wide as the longest value, at most kMostText
//     integers    one that has an unknown value after a number becomes a signed vector of bits,
//                 which can show both
//
// Reads only as far as necessary.
void SurveyChanges(const platform::FileContent& content, const Byte* end,
                   Declarations& declarations, const Passed& passed);

}  // namespace corv::vcd
