#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "corv/util/time_text.h"

// The table of units, and reading and writing of times as views of a text. Everything here is
// exact: a time is a whole number of some unit, and fractions are resolved in decimal arithmetic.
namespace corv::util {

struct TimeUnitRow {
    std::string_view name;  // zero-terminated
    std::int64_t per_next;  // how many make the next larger unit, 0 for the largest
    int guess;  // of two units that a misspelt one may have meant the lower is suggested
};

// In the order of TimeUnit.
inline constexpr auto kTimeUnits = std::to_array<TimeUnitRow>({
    {"fs", 1000, 4},
    {"ps", 1000, 1},
    {"ns", 1000, 0},
    {"us", 1000, 2},
    {"ms", 1000, 3},
    {"sec", 60, 5},
    {"min", 60, 6},
    {"hr", 0, 7},
});
static_assert(kTimeUnits.size() == static_cast<std::size_t>(TimeUnit::Hour) + 1,
              "a row for each TimeUnit");

// By identifier; each is a thousand of the one before.
inline constexpr std::array<std::string_view, 5> kFrequencyUnits{"Hz", "kHz", "MHz", "GHz", "THz"};

inline constexpr auto kBaseUnit = static_cast<unsigned>(TimeUnit::Picosecond);
inline constexpr auto kNotationUnit = static_cast<unsigned>(TimeUnit::Nanosecond);

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

// What keeps a text from being a time.
struct TimeComplaint {
    std::string_view place;  // in the text
    std::string reason;      // "`abc` is not a time"
    std::string remedy;      // "; write ...", or empty
};

// Complains about a text that ReadTime does not read, alone or followed by a unit.
TimeComplaint ComplainOfTime(std::string_view text);

// Reads a number and the unit directly after it. The unit may also be passed as a second text,
// which then counts as following the first. Returns nullopt if the text is not a time.
std::optional<TimeReading> ReadTime(std::string_view text, std::string_view unit = {}) noexcept;

// Reads a number alone, which is in the given unit (-1 for none).
std::optional<TimeReading> ReadTimeIn(std::string_view number, int unit) noexcept;

// The number of a time text, split into its pieces.
struct NumberText {
    bool negative = false;
    std::string_view whole;     // digits before the point, without leading zeros
    std::string_view fraction;  // digits after it, without trailing zeros
    std::string_view rest;      // what follows the number
    std::string_view digits;    // the number as written, without its sign
};

// Splits the number off the front of a text; nullopt if there is none.
std::optional<NumberText> SplitNumber(std::string_view text) noexcept;

// Returns how much of a text is a number in the form of times: a sign, digits, a point, digits.
// Returns 0 if the text does not begin with one.
std::size_t NumberLength(std::string_view text) noexcept;

// Appends what FormatTime returns.
void AppendTime(std::string& out, std::int64_t picoseconds);

// Appends the number in decimal.
void AppendNumber(std::string& out, std::int64_t value);
void AppendNumber(std::string& out, std::uint64_t value);

}  // namespace corv::util
