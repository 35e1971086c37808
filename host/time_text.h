#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// Times as users write and read them. A time is a number of picoseconds, 0 or more.
namespace corv::host {

inline constexpr unsigned kPicosecond = 1;  // a unit identifier of corv/util/time_units.h

// A time, or a sentence about why the text is not one.
struct TimeReading {
    std::optional<std::int64_t> time;
    std::string problem;
};

// Reads "10ns", "10 ns", "1.5us"; a number alone counts picoseconds. Negative times and fractions
// of a picosecond are problems.
TimeReading ReadTime(std::string_view text);

// A time as the library reads it: 1.5ns is 1500 in ps. A fraction of a femtosecond is kept.
struct WrittenTime {
    double number = 0;
    unsigned unit = kPicosecond;
    std::string problem;  // empty if the text is a time that is not negative
};
WrittenTime ReadWrittenTime(std::string_view text);

// Returns the time in the largest unit in which it is whole: "1500ps" for 1500, "2ns" for 2000,
// "0ps" for 0.
std::string TimeText(std::int64_t time);

// Returns the time in the given unit with as many decimals as needed, at most 15: 1500 in ns is
// "1.5ns".
std::string TimeText(std::int64_t time, unsigned unit);

// Returns the largest unit from ps on in which the time is whole.
unsigned WholeUnit(std::int64_t time);

// Returns the number of picoseconds in the unit, 0 for fs.
std::int64_t UnitSize(unsigned unit);

}  // namespace corv::host
