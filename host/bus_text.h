#pragma once

#include <string>
#include <string_view>

namespace corv::host {

enum class Radix { Bin = 2, Oct = 8, Dec = 10, Hex = 16 };

// How the bits of a vector make a number.
struct BusKind {
    bool is_signed = false;  // two's complement
    int fraction = 0;        // bits after the binary point
    bool operator==(const BusKind&) const = default;
};

// Returns the kind that the name of a vector's type implies: signed, sfixed and ufixed, including
// the unresolved types.
BusKind BusKindOf(std::string_view type_name, int right);

// Returns the characters of a vector, the most significant first, as digits in a radix: "01011010"
// is 5A. An octal or hexadecimal digit whose bits are all the same letter of std_logic is that
// letter ("ZZZZ0001" is Z1). If a digit cannot express its bits, the characters themselves are
// returned: a digit never hides anything. A decimal number has the sign and the binary point of its
// kind; with characters other than 0 and 1 it is written in hexadecimal instead.
std::string BusDigits(std::string_view characters, Radix radix, BusKind kind = {});

// The same as VHDL writes it: "0101", X"5A", O"132", and decimal as a plain number.
std::string BusLiteral(std::string_view characters, Radix radix, BusKind kind = {});

// The same without any quote: 0101, 0x5A, 0o132, and decimal as a plain number.
std::string BusPlain(std::string_view characters, Radix radix, BusKind kind = {});

}  // namespace corv::host
