#include "host/bus_text.h"

#include <algorithm>

namespace corv::host {
namespace {

bool IsBit(char c) {
    return c == '0' || c == '1';
}

// One digit for a few bits, 0 when none tells them.
char DigitOf(std::string_view bits) {
    if (!IsBit(bits[0])) {
        return bits.find_first_not_of(bits[0]) == std::string_view::npos ? bits[0] : '\0';
    }
    unsigned value = 0;
    for (const char bit : bits) {
        if (!IsBit(bit)) {
            return '\0';
        }
        value = value * 2 + (bit == '1' ? 1 : 0);
    }
    return "0123456789ABCDEF"[value];
}

// Digits of so many bits each; empty when a digit can't be told.
std::string Grouped(std::string_view bits, std::size_t each) {
    std::string digits;
    while (!bits.empty()) {
        const std::size_t odd = bits.size() % each;  // only the first digit may have fewer
        const char digit = DigitOf(bits.substr(0, odd == 0 ? each : odd));
        if (digit == '\0') {
            return {};
        }
        digits += digit;
        bits.remove_prefix(odd == 0 ? each : odd);
    }
    return digits;
}

// A binary number of any length in decimal.
std::string Decimal(std::string_view bits) {
    std::string digits(1, '0');  // the least significant first
    for (const char bit : bits) {
        int carry = bit == '1' ? 1 : 0;
        for (char& digit : digits) {
            const int doubled = (digit - '0') * 2 + carry;
            digit = static_cast<char>('0' + doubled % 10);
            carry = doubled / 10;
        }
        if (carry != 0) {
            digits += '1';
        }
    }
    std::reverse(digits.begin(), digits.end());
    return digits;
}

// Empty where the radix can't tell the characters.
std::string Digits(std::string_view characters, Radix radix) {
    switch (radix) {
        case Radix::Oct:
            return Grouped(characters, 3);
        case Radix::Hex:
            return Grouped(characters, 4);
        case Radix::Dec:
            return std::all_of(characters.begin(), characters.end(), IsBit) ? Decimal(characters)
                                                                            : std::string();
        case Radix::Bin:
            break;
    }
    return std::string(characters);
}

}  // namespace

std::string BusDigits(std::string_view characters, Radix radix) {
    std::string digits = Digits(characters, radix);
    return digits.empty() ? std::string(characters) : digits;
}

std::string BusLiteral(std::string_view characters, Radix radix) {
    std::string digits = Digits(characters, radix);
    const bool whole = radix == Radix::Hex   ? characters.size() % 4 == 0
                       : radix == Radix::Oct ? characters.size() % 3 == 0
                                             : true;
    if (digits.empty() || radix == Radix::Bin || !whole) {
        return '"' + std::string(characters) + '"';  // X"..." always tells four bits a digit
    }
    if (radix == Radix::Dec) {
        return digits;
    }
    return (radix == Radix::Hex ? "X\"" : "O\"") + digits + '"';
}

}  // namespace corv::host
