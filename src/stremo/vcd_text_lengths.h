#pragma once

#include "stremo/vcd_changes.h"

namespace corv::vcd {

// Makes the variables of texts as wide as the longest value that the file has for them, at most
// kMostText. It reads all changes up to `end`.
void FindTextLengths(Bytes file, const Byte* end, Declarations& declarations, const Forget& forget);

}  // namespace corv::vcd
