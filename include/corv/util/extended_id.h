#pragma once

#include "corv/platform/export.h"

// The place behind the extended identifier (IEEE 1076) that a name begins with: "\a.b\.c" gives
// ".c". A doubled backslash belongs to the identifier; one that is never closed runs to the end. A
// name that begins with another character is given back unchanged, null too.
CORV_API const char* SkipExtendedID(const char* name) noexcept;
