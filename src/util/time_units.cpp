#include "corv/util/time_units.h"

#include <cmath>
#include <iterator>

#include "util/time_text.h"

namespace {

using corv::util::kTimeUnits;
using corv::util::UnitRatio;

// 1e0, 1e3, … 1e15. Indexed from the end, how many of a unit up to "sec" make a second; indexed
// from the front, how many hertz make a frequency unit.
constexpr double kThousands[] = {1, 1e3, 1e6, 1e9, 1e12, 1e15};
constexpr unsigned kSecond = 5;
constexpr unsigned kFrequencyUnits = 5;

bool IsWhole(double value) noexcept {
    return std::isfinite(value) && value == std::trunc(value);
}

bool IsScalable(const double* value, const int* unit) noexcept {
    return value && unit && *unit >= 0 && *unit < static_cast<int>(kTimeUnits.size()) &&
           std::isfinite(*value) && *value != 0;
}

double PerNextUnit(int unit) noexcept {
    return static_cast<double>(kTimeUnits[static_cast<std::size_t>(unit)].per_next);
}

}  // namespace

double ChangeTime(double value, unsigned from_unit, unsigned to_unit) noexcept {
    if (from_unit == to_unit) {
        return value;
    }
    if (from_unit >= kTimeUnits.size() || to_unit >= kTimeUnits.size()) {
        return 0;
    }
    return from_unit > to_unit ? value * static_cast<double>(UnitRatio(to_unit, from_unit))
                               : value / static_cast<double>(UnitRatio(from_unit, to_unit));
}

bool TextToTime(const char* text, double* value, int* unit) noexcept {
    const auto time = corv::util::ReadTime(text ? text : "");
    if (!time) {
        return false;
    }
    if (value) {
        *value = time->number;
    }
    if (unit) {
        *unit = time->unit;
    }
    return true;
}

const char* UnitNameFromID(unsigned unit) noexcept {
    return unit < kTimeUnits.size() ? kTimeUnits[unit].name.data() : "";
}

int UnitIDFromName(const char* name) noexcept {
    return name ? corv::util::FindTimeUnit(name) : -1;
}

void ScaleNumberNoFloat(double* value, int* unit) noexcept {
    if (!IsScalable(value, unit)) {
        return;
    }
    while (IsWhole(*value) && PerNextUnit(*unit) != 0 &&
           std::fmod(*value, PerNextUnit(*unit)) == 0) {
        *value /= PerNextUnit(*unit);
        ++*unit;
    }
}

void ScaleNumber(double* value, int* unit) noexcept {
    if (!IsScalable(value, unit) || IsWhole(*value)) {
        return ScaleNumberNoFloat(value, unit);
    }
    while (PerNextUnit(*unit) != 0 && std::abs(*value) >= PerNextUnit(*unit)) {
        *value /= PerNextUnit(*unit);
        ++*unit;
    }
}

double PeriodFromFreq(double frequency, unsigned frequency_unit, unsigned time_unit) noexcept {
    if (!(frequency > 0) || frequency_unit >= kFrequencyUnits || time_unit >= kTimeUnits.size()) {
        return 0;
    }
    if (time_unit > kSecond) {
        const double seconds = 1 / (frequency * kThousands[frequency_unit]);
        return ChangeTime(seconds, kSecond, time_unit);
    }
    // Round only once, so that whole periods come out whole: 1/f is units per second over hertz,
    // and the powers of 1000 in both cancel out before the division.
    const unsigned per_second = kSecond - time_unit;
    return per_second >= frequency_unit ? kThousands[per_second - frequency_unit] / frequency
                                        : 1 / (frequency * kThousands[frequency_unit - per_second]);
}
