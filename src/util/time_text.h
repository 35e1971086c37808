#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// The table of units, and reading and writing of times as views of a text. Everything here is
// exact: a time is a whole number of some unit, and fractions are resolved in decimal arithmetic.
namespace corv::util {

struct TimeUnitRow {
    std::string_view name;  // zero-terminated
    std::int64_t per_next;  // how many make the next larger unit, 0 for the largest
};

inline constexpr std::array<TimeUnitRow, 8> kTimeUnits{{
    {"fs", 1000},
    {"ps", 1000},
    {"ns", 1000},
    {"us", 1000},
    {"ms", 1000},
    {"sec", 60},
    {"min", 60},
    {"hr", 0},
}};

inline constexpr unsigned kBaseUnit = 1;      // ps
inline constexpr unsigned kNotationUnit = 2;  // ns

// Every unit in femtoseconds.
inline constexpr auto kFemtoseconds = [] {
    std::array<std::int64_t, kTimeUnits.size()> sizes{1};
    for (std::size_t i = 1; i < sizes.size(); ++i) {
        sizes[i] = sizes[i - 1] * kTimeUnits[i - 1].per_next;
    }
    return sizes;
}();

// Returns how many of the smaller unit make one of the larger. Both must be units of the table,
// from <= to.
constexpr std::int64_t UnitRatio(unsigned from, unsigned to) noexcept {
    return kFemtoseconds[to] / kFemtoseconds[from];
}

// Returns the identifier of a unit name in any case, -1 for anything else.
int FindTimeUnit(std::string_view name) noexcept;

// A time that was read: the number and its unit (-1 if none was written). `whole` is the number
// truncated toward zero; it is exact where the double is rounded.
struct TimeReading {
    double number = 0;
    std::int64_t whole = 0;
    int unit = -1;
};

// Reads a number and the unit directly after it. The unit may also be passed as a second text,
// which then counts as following the first. Returns nullopt if the text is not a time.
std::optional<TimeReading> ReadTime(std::string_view text, std::string_view unit = {}) noexcept;

// Reads a number alone, which is in the given unit (-1 for none).
std::optional<TimeReading> ReadTimeIn(std::string_view number, int unit) noexcept;

// Returns how much of a text is a number in the form of times: a sign, digits, a point, digits.
// Returns 0 if the text does not begin with one.
std::size_t NumberLength(std::string_view text) noexcept;

// Converts a whole number to the largest unit in which it is still whole. 0 keeps its unit.
void ScaleWhole(std::int64_t& value, unsigned& unit) noexcept;

// Appends the number in decimal.
void AppendNumber(std::string& out, std::int64_t value);
void AppendNumber(std::string& out, std::uint64_t value);

}  // namespace corv::util
