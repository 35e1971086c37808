#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// Numbers in the forms of value texts and VHDL.
//
//     integer = [ sign ] digits [ e [ "+" ] digits ]
//             | [ sign ] radix "#" [ sign ] digits [ "#" [ e [ "+" ] digits ] ]
//     real    = [ sign ] digits [ "." digits ] [ e [ sign ] digits ]
//
// e and digits may have either case; a single underscore may separate two digits. The radix is 2 to
// 16, and the exponent of a based literal is a power of the radix. There is at most one sign.
namespace corv::typeinfo {

// Reads the whole text as an integer of 32 bits.
std::optional<std::int32_t> ReadInteger(std::string_view text) noexcept;
// Reads the whole text as the nearest double. A number beyond the range of doubles is not read, nor
// is one with underscores and more than 1024 characters.
std::optional<double> ReadReal(std::string_view text) noexcept;

// Appends a number in decimal or, for radix 2, 8 and 16, as a based literal: -16#FF#. `Out` is a
// std::string or a FixedText, also below.
template <class Out>
void AppendInteger(Out& out, std::int32_t number, int radix);
// Appends the shortest text that reads back to the same double, which must be finite.
template <class Out>
void AppendReal(Out& out, double number);
// Appends a number as printf writes it with %g.
void AppendSixDigits(std::string& out, double number);

// Returns the number rounded to that many significant digits; infinity if that exceeds the range of
// doubles.
double RoundToDigits(double number, int digits) noexcept;

}  // namespace corv::typeinfo
