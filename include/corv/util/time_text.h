#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "corv/platform/export.h"
#include "corv/util/problem.h"

// Times as users write and read them, exact to the picosecond.
namespace corv {

// The units of times, by the identifiers of time_units.h.
enum class TimeUnit : unsigned {
    Femtosecond,
    Picosecond,
    Nanosecond,
    Microsecond,
    Millisecond,
    Second,
    Minute,
    Hour,
};

// The names of the units in the order of their identifiers: "fs" to "hr", and "Hz" to "THz" for
// frequencies. The texts are static and end with a zero.
CORV_API std::span<const std::string_view> TimeUnitNames() noexcept;
CORV_API std::span<const std::string_view> FrequencyUnitNames() noexcept;

// The largest time in picoseconds that is read: 9.2e18.
inline constexpr std::int64_t kMaxTime = 9'200'000'000'000'000'000;

// Writes a time in the largest unit, from the picosecond on, in which it is whole: 35000 as "35ns",
// 1500 as "1500ps", 0 as "0ps". Returns an empty text if out of memory.
CORV_API std::string FormatTime(std::int64_t picoseconds) noexcept;

// Writes a time in the given unit, with as many decimals as it takes but no more than 15: 1500 in
// nanoseconds as "1.5ns". Returns an empty text for an unknown unit and if out of memory.
CORV_API std::string FormatTime(std::int64_t picoseconds, TimeUnit unit) noexcept;

// Reads a time: a number with an optional sign and fraction, and a unit in upper or lower case
// after it, picoseconds unless one is written. Spaces, tabs and line ends may stand around both.
// Every digit counts: "9007199254740993" and "0.000000000001sec" are read exactly.
//
// Returns nullopt for a text that is not a time, for a time that is not a whole number of
// picoseconds or past kMaxTime on either side of 0, and if out of memory. `problem` then receives
// the place, the reason and what would be right; otherwise it is unchanged.
//
//     corv::ParseTime("10xs", &problem);
//         // position 2, length 2: "unknown unit `xs`; did you mean `ns`?"
CORV_API std::optional<std::int64_t> ParseTime(std::string_view text,
                                               Problem* problem = nullptr) noexcept;

}  // namespace corv
