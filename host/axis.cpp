#include "host/axis.h"

#include <algorithm>
#include <limits>
#include <string>

#include "corv/stimulus/time_unit.h"

namespace corv::host {
namespace {

// Labels from here on keep the unit of the step, however long they get.
constexpr std::int64_t kMostDigits = 1'000'000'000'000'000;
constexpr std::int64_t kGap = 2;  // characters between two labels

constexpr TimeUnit Next(TimeUnit unit) {
    return static_cast<TimeUnit>(static_cast<unsigned>(unit) + 1);
}

void AddSteps(std::vector<RoundStep>& steps, TimeUnit unit,
              std::initializer_list<std::int64_t> counts) {
    const std::int64_t size =
        ConvertTime(1, static_cast<unsigned>(unit), static_cast<unsigned>(TimeUnit::Picosecond));
    for (const std::int64_t count : counts) {
        steps.push_back({count * size, unit});
    }
}

std::string Label(std::int64_t time, TimeUnit unit) {
    return time == 0 ? "0" : FormatTime(time, unit);
}

// Returns the length of the longest label. The last label has the most digits; the one before it
// may have more decimals.
std::int64_t LabelWidth(TimeWindow window, std::int64_t step, TimeUnit unit) {
    const std::int64_t last = window.end - window.end % step;
    return static_cast<std::int64_t>(
        std::max(Label(last, unit).size(), Label(last - std::min(step, last), unit).size()));
}

// Returns the unit in which the labels of the last steps are shortest, from the step's own unit up
// to seconds.
TimeUnit ShortestUnit(TimeWindow window, const RoundStep& step) {
    const std::int64_t last = window.end - window.end % step.length;
    const auto length = [&](TimeUnit unit) {
        return Label(last, unit).size() + Label(last - std::min(step.length, last), unit).size();
    };
    TimeUnit best = step.unit;
    for (TimeUnit unit = Next(best); unit <= TimeUnit::Second && last < kMostDigits;
         unit = Next(unit)) {
        best = length(unit) < length(best) ? unit : best;
    }
    return best;
}

std::int64_t FirstTick(TimeWindow window, std::int64_t step) {
    const std::int64_t rest = step > 0 ? window.start % step : 0;
    if (rest == 0) {
        return window.start;
    }
    return window.start > std::numeric_limits<std::int64_t>::max() - step
               ? window.end
               : window.start - rest + step;
}

}  // namespace

const std::vector<RoundStep>& RoundSteps() {
    static const std::vector<RoundStep> steps = [] {
        std::vector<RoundStep> list;
        for (auto unit = TimeUnit::Picosecond; unit < TimeUnit::Second; unit = Next(unit)) {
            AddSteps(list, unit, {1, 2, 5, 10, 20, 50, 100, 200, 500});
        }
        AddSteps(list, TimeUnit::Second, {1, 2, 5, 10, 20, 30});
        AddSteps(list, TimeUnit::Minute, {1, 2, 5, 10, 20, 30});
        AddSteps(list, TimeUnit::Hour, {1, 2, 5, 10, 20, 50, 100, 200, 500, 1000, 2000});
        return list;
    }();
    return steps;
}

std::vector<Tick> MakeTicks(const TimeGrid& grid, std::int64_t columns_per_character,
                            std::optional<TimeUnit> unit) {
    const TimeWindow window = grid.Window();
    std::int64_t step = 0;
    auto step_unit = TimeUnit::Picosecond;
    for (const RoundStep& candidate : RoundSteps()) {
        step = candidate.length;
        step_unit = unit ? *unit : ShortestUnit(window, candidate);
        const std::int64_t need =
            (LabelWidth(window, step, step_unit) + kGap) * columns_per_character;
        if (need < grid.Columns() && grid.First(need) - window.start <= step) {
            break;
        }
    }
    std::vector<Tick> ticks;
    for (std::int64_t time = FirstTick(window, step); time < window.end;) {
        ticks.push_back({time, Label(time, step_unit)});
        time = time > window.end - step ? window.end : time + step;
    }
    return ticks;
}

}  // namespace corv::host
