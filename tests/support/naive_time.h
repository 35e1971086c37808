#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>

namespace corv::test {

__extension__ typedef __int128 Int128;

inline constexpr std::array<const char*, 8> kUnitNames{"fs", "ps",  "ns",  "us",
                                                       "ms", "sec", "min", "hr"};

// The size of a unit in fs.
inline Int128 UnitSize(unsigned unit) {
    Int128 size = 1;
    for (unsigned i = 1; i <= unit; ++i) {
        size *= i > 5 ? 60 : 1000;
    }
    return size;
}

// A time in another unit, exact, truncated toward zero, saturating.
inline std::int64_t NaiveConvert(Int128 value, unsigned from, unsigned to) {
    using Limits = std::numeric_limits<std::int64_t>;
    const Int128 exact = value * UnitSize(from) / UnitSize(to);
    return exact > Limits::max()   ? Limits::max()
           : exact < Limits::min() ? Limits::min()
                                   : static_cast<std::int64_t>(exact);
}

inline std::string NaiveLower(std::string text) {
    for (char& c : text) {
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return text;
}

inline int NaiveUnit(const std::string& name) {
    int unit = 7;
    while (unit >= 0 && NaiveLower(name) != kUnitNames.at(static_cast<unsigned>(unit))) {
        --unit;
    }
    return unit;
}

struct NaiveTime {
    std::int64_t value;  // truncated toward zero
    int unit;            // -1: none written
};

// Reads sign, digits, point, digits, unit as an exact decimal fraction and moves it down to the
// first unit in which it is whole. Digits of a fraction behind the twelfth are dropped.
inline std::optional<NaiveTime> NaiveReadTime(std::string text) {
    const bool negative = text.starts_with('-');
    text.erase(0, negative || text.starts_with('+') ? 1 : 0);
    const std::size_t end = std::min(text.find_first_not_of(".0123456789"), text.size());
    const std::size_t point = std::min(text.find('.'), end);
    std::string fraction = text.substr(point, end - point);
    std::string digits = text.substr(0, point) + fraction.substr(0, 13);
    int unit = NaiveUnit(text.substr(end));
    if (fraction.find('.', 1) != std::string::npos || (unit < 0 && end < text.size()) ||
        digits.find_first_not_of('.') == std::string::npos) {
        return std::nullopt;
    }
    Int128 number = 0;
    Int128 scale = 1;
    for (std::size_t i = 0; i < digits.size() && number / scale < Int128{1} << 80; ++i) {
        number = digits[i] == '.' ? number : number * 10 + (digits[i] - '0');
        scale *= i > point ? 10 : 1;
    }
    const Int128 limit = Int128{9'200'000'000'000'000'000} * 1000;
    if (number > limit * scale / UnitSize(unit < 0 ? 1 : static_cast<unsigned>(unit))) {
        return std::nullopt;
    }
    for (; unit > 0 && number % scale != 0; --unit) {
        number *= unit > 5 ? 60 : 1000;
    }
    return NaiveTime{NaiveConvert(number / scale * (negative ? -1 : 1), 1, 1), unit};
}

}  // namespace corv::test
