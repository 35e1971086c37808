#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "stremo/ghw/notes.h"
#include "stremo/ghw/types.h"
#include "util/saturate.h"
#include "util/time_text.h"

namespace corv::ghw {

// The unit of a file's times, which the file does not state.
class TimeScale {
public:
    // A unit's identifier (corv/util/time_units.h).
    explicit TimeScale(unsigned unit) noexcept : unit_(unit) {}

    // Finds the unit by the type time, whose values are in the same unit: in the list of its units,
    // the one with the value 1 is the unit, and smaller ones have 0. Without such a type,
    // femtoseconds, the usual unit, are assumed and noted.
    static TimeScale Find(const Types& types, Notes& notes);

    std::string_view unit_name() const noexcept { return util::kTimeUnits[unit_].name; }
    // The factor from a value of the type time to femtoseconds, its primary unit.
    std::int64_t femtoseconds() const noexcept { return util::kFemtoseconds[unit_]; }

    // Return a time of the file in picoseconds, rounded down and saturated, and whether nothing was
    // lost.
    std::int64_t ToPicoseconds(std::int64_t time) const noexcept {
        return unit_ == 0 ? time / kPicosecond
                          : util::SaturatingMultiply(time, femtoseconds() / kPicosecond);
    }
    bool IsExact(std::int64_t time) const noexcept { return unit_ != 0 || time % kPicosecond == 0; }

private:
    static constexpr std::int64_t kPicosecond = util::kFemtoseconds[util::kBaseUnit];

    unsigned unit_;
};

// Returns the scaled value as a double. `exact` becomes false if the double has lost digits.
double ToReal(std::int64_t value, std::int64_t scale, bool& exact) noexcept;

}  // namespace corv::ghw
