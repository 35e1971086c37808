#include "host/driver.h"

#include <algorithm>
#include <limits>
#include <string>
#include <utility>

#include "corv/stimulus/stim_iterator.h"

namespace corv::host {
namespace {

constexpr std::int64_t kLastTime = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kSmallestWindow = 1000;  // a window around a single event, 1 ns
// Events that are looked at in one column before it counts as crowded even without a change.
constexpr int kMaxPerColumn = 1000;

std::int64_t Later(std::int64_t time, std::int64_t by) {
    return time > kLastTime - by ? kLastTime : time + by;
}

std::int64_t WithMargin(std::int64_t start, std::int64_t last) {
    const std::int64_t from = std::max(start, last);
    return Later(from, std::max<std::int64_t>((from - start) / 8, last > start ? 1 : 0));
}

std::optional<std::string> ValueAt(const CStimulus& stimulus, std::int64_t time) {
    CString value;
    if (time < 0 || !stimulus.GetValue(time, value)) {
        return std::nullopt;
    }
    return std::string(value.View());
}

void AddSample(const CStimulus& stimulus, std::int64_t time, Trace& trace) {
    if (auto value = ValueAt(stimulus, time)) {
        trace.changes.push_back({time, std::move(*value)});
    }
}

// Records the events of the column that begins with `time`; gives the first event behind it.
std::int64_t RecordColumn(const CStimulus& stimulus, const TimeGrid& grid, std::int64_t time,
                          Trace& trace) {
    const std::int64_t column = grid.Column(time);
    const std::int64_t end = grid.First(column + 1);
    int changes = 0;
    for (int seen = 0; time >= 0 && time < end; ++seen) {
        if (changes >= 2 || seen >= kMaxPerColumn) {
            trace.crowded.push_back({grid.First(column), end});
            AddSample(stimulus, end - 1, trace);
            return stimulus.GetNextEventTime(end - 1);
        }
        const std::size_t count = trace.changes.size();
        AddSample(stimulus, time, trace);
        if (count > 0 && trace.changes.size() > count &&
            trace.changes[count].value != trace.changes[count - 1].value) {
            ++changes;
        }
        time = stimulus.GetNextEventTime(time);
    }
    return time;
}

struct LastTimes {
    std::int64_t relative = -1;
    std::int64_t absolute = -1;
};

LastTimes LastElements(CStimulus& stimulus) {
    LastTimes last;
    CStimIterator elements(&stimulus);
    while (const CSimpleStimulus* element = elements.Next()) {
        std::int64_t& kind = element->Absolute() ? last.absolute : last.relative;
        kind = std::max(kind, element->GetTime());
    }
    return last;
}

}  // namespace

Trace RecordEvents(const CStimulus& stimulus, TimeWindow window, std::size_t max) {
    Trace trace;
    trace.before = ValueAt(stimulus, window.start - 1);
    std::int64_t time = stimulus.GetNextEventTime(window.start - 1);
    while (time >= 0 && time <= window.end) {
        if (trace.changes.size() >= max) {
            trace.truncated = true;
            break;
        }
        AddSample(stimulus, time, trace);
        time = stimulus.GetNextEventTime(time);
    }
    return trace;
}

Trace RecordForGrid(const CStimulus& stimulus, const TimeGrid& grid) {
    const TimeWindow window = grid.Window();
    Trace trace;
    trace.before = ValueAt(stimulus, window.start - 1);
    std::int64_t time = stimulus.GetNextEventTime(window.start - 1);
    while (time >= 0 && time < window.end) {
        time = RecordColumn(stimulus, grid, time, trace);
    }
    return trace;
}

std::int64_t NaturalEnd(CStimulus& stimulus, std::int64_t start) {
    const std::int64_t first = std::max<std::int64_t>(stimulus.GetNextEventTime(-1), 0);
    const LastTimes last = LastElements(stimulus);
    const std::int64_t period = stimulus.GetRepeatRate();
    std::int64_t end = WithMargin(start, last.absolute);
    if (period > 0 && last.relative >= 0) {
        end = std::max(end, Later(Later(std::max(start, first), period), period));
    } else {
        end = std::max(end,
                       WithMargin(start, Later(first, std::max<std::int64_t>(last.relative, 0))));
    }
    return end > start ? end : Later(start, kSmallestWindow);
}

}  // namespace corv::host
