#include "host/axis.h"

#include <algorithm>
#include <limits>
#include <string>

#include "host/time_text.h"

namespace corv::host {
namespace {

constexpr unsigned kSecond = 5;
constexpr unsigned kMinute = 6;
constexpr unsigned kHour = 7;
// Labels from here on keep the unit of the step, however long they get.
constexpr std::int64_t kMostDigits = 1'000'000'000'000'000;
constexpr std::int64_t kGap = 2;  // characters between two labels

void AddSteps(std::vector<std::int64_t>& steps, unsigned unit,
              std::initializer_list<std::int64_t> counts) {
    for (const std::int64_t count : counts) {
        steps.push_back(count * UnitSize(unit));
    }
}

std::string Label(std::int64_t time, unsigned unit) {
    return time == 0 ? "0" : TimeText(time, unit);
}

// Returns the length of the longest label. The last label has the most digits; the one before it
// may have more decimals.
std::int64_t LabelWidth(TimeWindow window, std::int64_t step, unsigned unit) {
    const std::int64_t last = window.end - window.end % step;
    return static_cast<std::int64_t>(
        std::max(Label(last, unit).size(), Label(last - std::min(step, last), unit).size()));
}

// Returns the unit in which the labels of the last steps are shortest, from the step's own unit up
// to seconds.
unsigned ShortestUnit(TimeWindow window, std::int64_t step) {
    const unsigned own = WholeUnit(step);
    const std::int64_t last = window.end - window.end % step;
    const auto length = [&](unsigned unit) {
        return Label(last, unit).size() + Label(last - std::min(step, last), unit).size();
    };
    unsigned best = own;
    for (unsigned unit = own + 1; unit <= kSecond && last < kMostDigits; ++unit) {
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

const std::vector<std::int64_t>& RoundSteps() {
    static const std::vector<std::int64_t> steps = [] {
        std::vector<std::int64_t> list;
        for (unsigned unit = kPicosecond; unit < kSecond; ++unit) {
            AddSteps(list, unit, {1, 2, 5, 10, 20, 50, 100, 200, 500});
        }
        AddSteps(list, kSecond, {1, 2, 5, 10, 20, 30});
        AddSteps(list, kMinute, {1, 2, 5, 10, 20, 30});
        AddSteps(list, kHour, {1, 2, 5, 10, 20, 50, 100, 200, 500, 1000, 2000});
        return list;
    }();
    return steps;
}

std::vector<Tick> MakeTicks(const TimeGrid& grid, std::int64_t columns_per_character,
                            std::optional<unsigned> unit) {
    const TimeWindow window = grid.Window();
    std::int64_t step = 0;
    unsigned step_unit = 0;
    for (const std::int64_t candidate : RoundSteps()) {
        step = candidate;
        step_unit = unit ? *unit : ShortestUnit(window, step);
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
