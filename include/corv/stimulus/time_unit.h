#pragma once

#include <cstdint>
#include <type_traits>

#include "corv/platform/export.h"

namespace corv {

// Returns the time in the target unit, truncated toward zero. Whole-number arithmetic loses no
// digit of a 64-bit time. A time past the 64-bit range becomes the end of the range; an unknown
// unit returns 0.
CORV_API std::int64_t ConvertTime(std::int64_t value, std::uint32_t unit,
                                  std::uint32_t target_unit) noexcept;

}  // namespace corv

// A time as it was written: a number, its unit, and the unit in which it is used (identifiers of
// time_units.h; 1 is the picosecond). A time of -1 means none.
template <class T>
class TTimeUnit {
    static_assert(std::is_same_v<T, std::int64_t>, "times are 64-bit whole numbers");

public:
    TTimeUnit(T time_value = -1,
              std::uint32_t time_unit = 1,  // NOLINT(google-explicit-constructor)
              std::uint32_t target = 1) noexcept
        : value(time_value), unit(time_unit), target_unit(target) {}

    // Returns the time in the target unit, truncated toward zero; unchanged if both units are
    // equal.
    T GetTime() const noexcept {
        return unit == target_unit ? value : corv::ConvertTime(value, unit, target_unit);
    }

    T value;
    std::uint32_t unit;
    std::uint32_t target_unit;
};
