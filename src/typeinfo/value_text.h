#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "typeinfo/scalar_text.h"
#include "typeinfo/type_tree.h"

// The text of a value of a simple type, its reader and its writer.
//
//     value      = scalar                                 (scalar_text.h)
//                | characters                             01XZ
//                | '"' { character | '""' } '"'           "01XZ"
//                | radix '"' digits '"'                   X"1F"
//                | "(" scalar { "," scalar } ")"          (1,2,3)
//
// All but the first are arrays; each must give as many values as the array has elements. The
// characters are one-character literals. The radix letter is X, O or B in any case, a single
// underscore may stand between digits, and '0' and '1' must be literals. Blanks may stand around
// the scalars in parentheses. The readings are tried in this order.
namespace corv::typeinfo {

// Reads the text of a value into SimpleSize bytes, all or none.
bool ReadValue(TypeView type, std::string_view text, unsigned char* target) noexcept;

// Appends the text of a stored value; false, with `out` as it was, when it has none. `Out` is a
// std::string or a FixedText.
template <class Out>
bool AppendValue(Out& out, TypeView type, const unsigned char* bytes, ScalarStyle style);

}  // namespace corv::typeinfo
