#pragma once

#include <cstddef>
#include <string_view>

#include "corv/platform/export.h"

// The place behind the extended identifier (IEEE 1076) that a name begins with: "\a.b\.c" gives
// ".c". A doubled backslash belongs to the identifier; one that is never closed runs to the end. A
// name that begins with another character is given back unchanged, null too.
CORV_API const char* SkipExtendedID(const char* name) noexcept;

namespace corv {

// How long the name is that begins with a backslash at the start of a level of a hierarchical name;
// 0 for a text that begins otherwise. Levels are separated by ".", "/" and `separator`, the
// hierarchy separator (corv/signals/hierarchy_separator.h), which may be a backslash too. Such a
// name is the first of these that fits:
//
//     \a.b\        up to a backslash that closes it as in VHDL, where the name ends or a separator
//                  or bracket follows; a doubled backslash does not close it
//     \a.b .c      up to a blank in front of a separator and another level: how a scope ends that
//                  Verilog has escaped; the blank belongs to the name
//     \a.b         all of the text
CORV_API std::size_t EscapedNameLength(std::string_view text, char separator) noexcept;

}  // namespace corv
