#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "stremo/ghw/notes.h"
#include "stremo/ghw/types.h"
#include "util/saturate.h"
#include "util/time_text.h"

namespace corv::ghw {

// The unit that a file's times are in, which it does not say.
class TimeScale {
public:
    // A unit's identifier (corv/util/time_units.h).
    explicit TimeScale(unsigned unit) noexcept : unit_(unit) {}

    // Found by the type time: its values are in the unit as well, and its units have a value of 0
    // below it and of 1 where it is. Femtoseconds, the usual unit, and a note when there is no such
    // type.
    static TimeScale Find(const Types& types, Notes& notes);

    std::string_view unit_name() const noexcept { return util::kTimeUnits[unit_].name; }
    // What a value of the type time is multiplied with to be femtoseconds, its primary unit.
    std::int64_t femtoseconds() const noexcept { return util::kFemtoseconds[unit_]; }

    // A time of the file, rounded down and at most the last one; whether nothing is lost.
    std::int64_t ToPicoseconds(std::int64_t time) const noexcept {
        return unit_ == 0 ? time / kPicosecond
                          : util::SaturatingMultiply(time, femtoseconds() / kPicosecond);
    }
    bool IsExact(std::int64_t time) const noexcept { return unit_ != 0 || time % kPicosecond == 0; }

private:
    static constexpr std::int64_t kPicosecond = util::kFemtoseconds[util::kBaseUnit];

    unsigned unit_;
};

// A value of the type time in femtoseconds or of another type of 64 bits as it is; `exact` becomes
// false when the double has lost digits.
double ToReal(std::int64_t value, std::int64_t scale, bool& exact) noexcept;

}  // namespace corv::ghw
