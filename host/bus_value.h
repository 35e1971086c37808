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

// A value in the form in which it is driven, and a remark about it.
struct BusValue {
    // One character per element. Empty if the value is refused or, without a problem, if it stays
    // as it is written.
    std::string characters;
    std::string problem;  // a sentence; empty if all is well
};

// Reads a value of a vector. The forms are tried in this order:
//
//     X"A5" O"17" B"1010" D"165"   bit strings of VHDL, also with a width and U or S before them
//     0xA5 0o17 0b1010             numbers
//     16#A5# 16#A5                 based numbers
//     8'hA5                        numbers of Verilog
//     "1010" 10XZ                  the characters themselves, exactly as many as elements
//     165 -3                       decimal numbers, negative ones as two's complement
//     (others => '0')              all elements alike
//
// A letter among the digits of X"..." or O"..." fills all bits of its digit: X"Z5" is ZZZZ0101.
// Missing bits on the left are zeros, and excess zeros there are dropped; the problem says so if
// the form implies a number of bits. Ones are never dropped.
BusValue ReadBusValue(std::string_view word, const BusType& type);

}  // namespace corv::host
