#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "typeinfo/scalar_text.h"
#include "typeinfo/type_tree.h"

// Reader and writer of the text of a value of a simple type.
//
//     value      = scalar                                 (scalar_text.h)
//                | characters                             01XZ
//                | '"' { character | '""' } '"'           "01XZ"
//                | radix '"' digits '"'                   X"1F"
//                | "(" scalar { "," scalar } ")"          (1,2,3)
//
// All but the first are arrays and must have as many values as the array has elements. The
// characters are one-character literals. The radix letter is X, O or B in any case; single
// underscores may separate digits; '0' and '1' must be literals. Blanks are allowed around the
// scalars in parentheses. The forms are tried in this order.
namespace corv::typeinfo {

// Reads the text of a value into SimpleSize bytes: all of them, or none if it returns false.
bool ReadValue(TypeView type, std::string_view text, unsigned char* target) noexcept;

// Appends the text of a stored value. Returns false, with `out` unchanged, if it has none. `Out` is
// a std::string or a FixedText.
template <class Out>
bool AppendValue(Out& out, TypeView type, const unsigned char* bytes, ScalarStyle style);

}  // namespace corv::typeinfo
