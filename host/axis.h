#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "corv/util/time_text.h"
#include "host/picture.h"
#include "host/time_grid.h"

namespace corv::host {

// Returns the ticks of a time axis over the grid's window: at the multiples of the smallest round
// step (1, 2 or 5 times a power of ten in ps to sec; 1 to 30 min; hours) at which the labels do not
// touch, where a character takes `columns_per_character` columns. Labels are in the unit that makes
// them shortest, or in `unit`.
std::vector<Tick> MakeTicks(const TimeGrid& grid, std::int64_t columns_per_character,
                            std::optional<TimeUnit> unit);

// A step between ticks in picoseconds, a small number of a unit.
struct RoundStep {
    std::int64_t length;
    TimeUnit unit;
};
// Returns all of them, ascending.
const std::vector<RoundStep>& RoundSteps();

}  // namespace corv::host
