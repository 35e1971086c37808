#pragma once

#include <cstddef>
#include <string_view>

#include "corv/platform/export.h"

// Returns the place after the extended identifier (IEEE 1076) that a name begins with: ".c" in
// "\a.b\.c". A doubled backslash belongs to the identifier; an identifier that is never closed runs
// to the end. A name that begins with another character is returned unchanged, as is null.
CORV_API const char* SkipExtendedID(const char* name) noexcept;

namespace corv {

// Returns the length of the name that begins with a backslash at the start of a level of a
// hierarchical name; 0 for a text that begins otherwise. Levels are separated by ".", "/" and
// `separator`, the hierarchy separator (corv/signals/hierarchy_separator.h), which may be a
// backslash too. Such a name is the first of these that fits:
//
//     \a.b\        up to a backslash that closes it as in VHDL, where the name ends or a separator
//                  or bracket follows; a doubled backslash does not close it
//     \a.b .c      up to a blank before a separator and another level: how a scope ends that
//                  Verilog has escaped; the blank belongs to the name
//     \a.b         all of the text
CORV_API std::size_t EscapedNameLength(std::string_view text, char separator) noexcept;

}  // namespace corv
