// Conversion of whole times between units, saturating instead of overflowing.

#include "corv/stimulus/time_unit.h"

#include "util/saturate.h"
#include "util/time_text.h"

namespace corv {

std::int64_t ConvertTime(std::int64_t value, std::uint32_t unit,
                         std::uint32_t target_unit) noexcept {
    if (unit == target_unit) {
        return value;
    }
    if (unit >= util::kTimeUnits.size() || target_unit >= util::kTimeUnits.size()) {
        return 0;
    }
    return unit > target_unit ? util::SaturatingMultiply(value, util::UnitRatio(target_unit, unit))
                              : value / util::UnitRatio(unit, target_unit);
}

}  // namespace corv
