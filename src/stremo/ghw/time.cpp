#include "stremo/ghw/time.h"

#include <bit>
#include <cmath>

namespace corv::ghw {

TimeScale TimeScale::Find(const Types& types, Notes& notes) {
    const Type& time = types[types.time()];
    for (std::uint32_t i = 0; i < time.count; ++i) {
        const Unit& unit = types.UnitOf(time, i);
        const int found = util::FindTimeUnit(unit.name);
        if (unit.value == 1 && found >= 0) {
            return TimeScale(static_cast<unsigned>(found));
        }
    }
    notes.Add(types.time_offset(), "nothing tells the unit of times; femtoseconds are assumed");
    return TimeScale(0);
}

double ToReal(std::int64_t value, std::int64_t scale, bool& exact) noexcept {
    // Exact if the value fits into the 53 bits of a double and the product was not rounded, which
    // fma shows as a remainder of 0.
    const double number = static_cast<double>(value);
    const double factor = static_cast<double>(scale);
    const double scaled = number * factor;
    const auto magnitude =
        value < 0 ? 0 - static_cast<std::uint64_t>(value) : static_cast<std::uint64_t>(value);
    const int digits =
        magnitude == 0 ? 0
                       : static_cast<int>(std::bit_width(magnitude)) - std::countr_zero(magnitude);
    exact = exact && digits <= 53 && std::fma(number, factor, -scaled) == 0;
    return scaled;
}

}  // namespace corv::ghw
