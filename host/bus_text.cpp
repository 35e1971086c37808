#include "host/bus_text.h"

#include <algorithm>

namespace corv::host {
namespace {

bool IsBit(char c) {
    return c == '0' || c == '1';
}

// Returns one digit for a few bits, 0 if no digit expresses them.
char DigitOf(std::string_view bits) {
    constexpr std::string_view kLetters = "UXZWLHuxzwlh";
    if (kLetters.find(bits[0]) != std::string_view::npos) {
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

// Returns digits of `each` bits; empty if a digit cannot be expressed.
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

// Multiplies a decimal number, given by its digits with the least significant first, and adds a
// summand. Vectors may be longer than any number type.
void MultiplyAdd(std::string& digits, int factor, int summand) {
    for (char& digit : digits) {
        const int product = (digit - '0') * factor + summand;
        digit = static_cast<char>('0' + product % 10);
        summand = product / 10;
    }
    if (summand != 0) {
        digits += static_cast<char>('0' + summand);
    }
}

// Divides a whole number by a power of two: multiplied by the same power of five, it needs only a
// decimal point.
void PutPoint(std::string& digits, int fraction) {
    for (int i = 0; i < fraction; ++i) {
        MultiplyAdd(digits, 5, 0);
    }
    const auto places = static_cast<std::size_t>(fraction);
    if (digits.size() <= places) {
        digits.append(places + 1 - digits.size(), '0');
    }
    const std::size_t zeros = std::min(digits.find_first_not_of('0'), places);
    if (places > zeros) {
        digits.insert(places, 1, '.');
    }
    digits.erase(0, zeros);
}

// Returns a binary number of any length in decimal. For a negative one the complement plus one is
// its magnitude.
std::string Decimal(std::string_view bits, BusKind kind) {
    const bool negative = kind.is_signed && bits.starts_with('1');
    std::string digits(1, '0');  // the least significant first
    for (const char bit : bits) {
        MultiplyAdd(digits, 2, (bit == '1') != negative ? 1 : 0);
    }
    if (negative) {
        MultiplyAdd(digits, 1, 1);
    }
    if (kind.fraction > 0) {
        PutPoint(digits, kind.fraction);
    }
    digits += negative ? "-" : "";
    std::reverse(digits.begin(), digits.end());
    return digits;
}

bool IsNumber(std::string_view characters) {
    return !characters.empty() && std::all_of(characters.begin(), characters.end(), IsBit);
}

// Returns the radix that is used instead if decimal digits cannot express the characters.
Radix Written(std::string_view characters, Radix radix) {
    return radix == Radix::Dec && !IsNumber(characters) ? Radix::Hex : radix;
}

// Returns an empty text if the radix cannot express the characters.
std::string Digits(std::string_view characters, Radix radix, BusKind kind) {
    switch (radix) {
        case Radix::Oct:
            return Grouped(characters, 3);
        case Radix::Hex:
            return Grouped(characters, 4);
        case Radix::Dec:
            return Decimal(characters, kind);
        case Radix::Bin:
            break;
    }
    return std::string(characters);
}

}  // namespace

BusKind BusKindOf(std::string_view type_name, int right) {
    std::string name(type_name.substr(0, type_name.find('(')));
    std::transform(name.begin(), name.end(), name.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    name.erase(0, name.rfind('.') + 1);
    for (const std::string_view prefix : {"unresolved_", "u_"}) {
        name.erase(0, name.starts_with(prefix) ? prefix.size() : 0);
    }
    const bool fixed = name == "sfixed" || name == "ufixed";
    return {name == "signed" || name == "sfixed", fixed ? std::max(-right, 0) : 0};
}

std::string BusDigits(std::string_view characters, Radix radix, BusKind kind) {
    std::string digits = Digits(characters, Written(characters, radix), kind);
    return digits.empty() ? std::string(characters) : digits;
}

std::string BusLiteral(std::string_view characters, Radix radix, BusKind kind) {
    radix = Written(characters, radix);
    std::string digits = Digits(characters, radix, kind);
    const bool whole = radix == Radix::Hex   ? characters.size() % 4 == 0
                       : radix == Radix::Oct ? characters.size() % 3 == 0
                                             : true;
    if (digits.empty() || radix == Radix::Bin || !whole) {
        return '"' + std::string(characters) + '"';  // X"..." always has four bits per digit
    }
    if (radix == Radix::Dec) {
        return digits;
    }
    return (radix == Radix::Hex ? "X\"" : "O\"") + digits + '"';
}

std::string BusPlain(std::string_view characters, Radix radix, BusKind kind) {
    radix = Written(characters, radix);
    const std::string digits = Digits(characters, radix, kind);
    if (digits.empty()) {
        return std::string(characters);
    }
    return (radix == Radix::Hex ? "0x" : radix == Radix::Oct ? "0o" : "") + digits;
}

}  // namespace corv::host
