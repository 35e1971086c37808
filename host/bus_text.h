#pragma once

#include <string>
#include <string_view>

namespace corv::host {

enum class Radix { Bin = 2, Oct = 8, Dec = 10, Hex = 16 };

// The characters of a vector, the most significant first, as digits in a radix: "01011010" is 5A. A
// digit of an octal or hexadecimal text whose bits are all the same letter is that letter
// ("ZZZZ0001" is Z1). Where that does not hold, and in decimal wherever there is another character
// than 0 and 1, the characters themselves: no digit ever stands for bits that it does not tell.
std::string BusDigits(std::string_view characters, Radix radix);

// The same as VHDL writes it: "0101", X"5A", O"132", and decimal as a plain number.
std::string BusLiteral(std::string_view characters, Radix radix);

}  // namespace corv::host
