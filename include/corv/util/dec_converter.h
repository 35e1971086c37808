#pragma once

#include <cstdint>

#include "corv/platform/cstring.h"
#include "corv/platform/export.h"

// Converts numbers in the radices 2 to 16. Digits may have either case. Values from 2^63 to 2^64 -
// 1 are delivered as their 64-bit pattern, so that a bit string of 64 bits can be read and written
// back. A failed conversion leaves the value unchanged.
class c_decConverter {
public:
    // Reads a based literal (IEEE 1076): the radix in decimal, "#", digits, an optional closing
    // "#". A sign is allowed after the first "#", and single underscores between digits: "10#-1",
    // "16#FF", "2#1010_0101#". A text without "#" is not read. Returns 1 on success, else 0.
    CORV_API int Convert(const char* text, std::int64_t* value) noexcept;

    // Reads plain digits in the radix. A sign is allowed in radix 10 only, since "-" is a value of
    // std_logic. Returns 1 on success, else 0.
    CORV_API int Convert(const char* text, int radix, std::int64_t* value) noexcept;

    // Writes `width` digits 0 and 1, the most significant first, padded with 0 on the left; of a
    // wider value, the low bits. For a width below 1 the text is empty. Returns 1, or 0 with `out`
    // empty if out of memory.
    CORV_API int MakeBin(std::uint64_t value, int width, CString& out) noexcept;
};
