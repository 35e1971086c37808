#pragma once

#include <string>
#include <string_view>

namespace corv::host {

// What the values of a vector may be.
struct BusType {
    enum class Sign { Open, Unsigned, Signed };

    int width = 1;
    std::string letters;     // that an element may be; empty: any
    Sign sign = Sign::Open;  // whether a decimal number may be negative
};

// A value as it is driven, and what is to be said about it.
struct BusValue {
    // As many as the vector has elements. Empty when it is refused, or without a problem when it
    // stays as it is written.
    std::string characters;
    std::string problem;  // a sentence; empty when all is well
};

// Reads a value of a vector: in this order
//
//     X"A5" O"17" B"1010" D"165"   bit strings of VHDL, with a width and U or S in front too
//     0xA5 0o17 0b1010             numbers
//     16#A5# 16#A5                 based numbers
//     8'hA5                        numbers of Verilog
//     "1010" 10XZ                  the characters themselves, exactly as many as there are elements
//     165 -3                       decimal numbers, negative ones as two's complement
//     (others => '0')              all elements alike
//
// A digit of X"..." or O"..." that is another letter, X"Z5", stands for as many of that letter.
// Bits that are missing on the left are zeros, and zeros too many there are left out, which is said
// where the writing tells a number of bits. Ones are never left out.
BusValue ReadBusValue(std::string_view word, const BusType& type);

}  // namespace corv::host
