#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// Numbers as value texts and VHDL write them.
//
//     integer = [ sign ] digits [ e [ "+" ] digits ]
//             | [ sign ] radix "#" [ sign ] digits [ "#" [ e [ "+" ] digits ] ]
//     real    = [ sign ] digits [ "." digits ] [ e [ sign ] digits ]
//
// e is of either case, digits are too, a single underscore may stand between two of them. The radix
// is 2 to 16; its exponent is one of the radix. One sign at most.
namespace corv::typeinfo {

// The whole text as an integer of 32 bits.
std::optional<std::int32_t> ReadInteger(std::string_view text) noexcept;
// The whole text as the nearest double. One beyond the range of doubles is not read, nor one with
// underscores and more than 1024 characters.
std::optional<double> ReadReal(std::string_view text) noexcept;

// In decimal, for radix 2, 8 and 16 as a based literal: -16#FF#. `Out` is a std::string or a
// FixedText; so below.
template <class Out>
void AppendInteger(Out& out, std::int32_t number, int radix);
// The shortest text that reads back to the same double, which must be finite.
template <class Out>
void AppendReal(Out& out, double number);
// As printf writes it with %g.
void AppendSixDigits(std::string& out, double number);

// The number rounded to so many significant digits; infinite when that passes the doubles.
double RoundToDigits(double number, int digits) noexcept;

}  // namespace corv::typeinfo
