#pragma once

#include <string>
#include <string_view>

namespace corv::host {

enum class Radix { Bin = 2, Oct = 8, Dec = 10, Hex = 16 };

// What the bits of a vector stand for.
struct BusKind {
    bool is_signed = false;  // two's complement
    int fraction = 0;        // bits that stand behind the binary point
    bool operator==(const BusKind&) const = default;
};

// What the name of a vector's type tells: signed, sfixed and ufixed, also the unresolved ones.
BusKind BusKindOf(std::string_view type_name, int right);

// The characters of a vector, the most significant first, as digits in a radix: "01011010" is 5A. A
// digit of an octal or hexadecimal text whose bits are all the same letter of std_logic is that
// letter ("ZZZZ0001" is Z1). Where that does not hold, the characters themselves: no digit ever
// stands for bits that it does not tell. A number in decimal has the sign and the binary point of
// its kind; with another character than 0 and 1 it is written as in hexadecimal.
std::string BusDigits(std::string_view characters, Radix radix, BusKind kind = {});

// The same as VHDL writes it: "0101", X"5A", O"132", and decimal as a plain number.
std::string BusLiteral(std::string_view characters, Radix radix, BusKind kind = {});

// The same without any quote: 0101, 0x5A, 0o132, and decimal as a plain number.
std::string BusPlain(std::string_view characters, Radix radix, BusKind kind = {});

}  // namespace corv::host
