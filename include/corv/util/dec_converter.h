#pragma once

#include <cstdint>

#include "corv/platform/cstring.h"
#include "corv/platform/export.h"

// Numbers in several radices, 2 to 16. Digits of either case. Values from 2^63 to 2^64 - 1 are
// delivered as the 64-bit pattern they have, so that a 64-bit bit string reads and writes back.
// A failed read leaves the value untouched.
class c_decConverter {
public:
    // Reads a based literal (IEEE 1076): the radix in decimal, "#", digits, an optional closing
    // "#". A sign may stand after the first "#", single underscores between digits: "10#-1",
    // "16#FF", "2#1010_0101#". A text without "#" is not read. Gives 1 or 0.
    CORV_API int Convert(const char* text, std::int64_t* value) noexcept;

    // Reads plain digits in the radix; radix 10 takes a sign ("-" is a value of std_logic, so bit
    // strings take none). Gives 1 or 0.
    CORV_API int Convert(const char* text, int radix, std::int64_t* value) noexcept;

    // Writes `width` digits 0 and 1, the most significant first, padded with 0 on the left; of a
    // value wider than that the low bits. A width below 1 gives empty text. Gives 1, or 0 with
    // `out` empty when memory runs out.
    CORV_API int MakeBin(std::uint64_t value, int width, CString& out) noexcept;
};
