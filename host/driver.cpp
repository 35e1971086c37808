#include "host/driver.h"

#include <string>
#include <utility>

#include "host/picture.h"

namespace corv::host {
namespace {

// Events examined in one column before it counts as crowded even without a visible change: a source
// may repeat one value millions of times.
constexpr int kMaxPerColumn = 1000;

void AddSample(Source& source, std::int64_t time, Trace& trace) {
    if (auto value = source.ValueAt(time)) {
        trace.changes.push_back({time, std::move(*value)});
    }
}

// Returns whether two values look the same in a drawing, such as 1 and '1'.
bool LookAlike(bool bus, const std::string& a, const std::string& b) {
    return a == b || (bus ? ClassifyBus(a) == ClassifyBus(b) : Classify(a) == Classify(b));
}

// Records the events of the column that `time` is in; returns the first event after it.
std::int64_t RecordColumn(Source& source, const TimeGrid& grid, std::int64_t time, Trace& trace) {
    const std::int64_t column = grid.Column(time);
    const std::int64_t end = grid.First(column + 1);
    int changes = 0;
    for (int seen = 0; time >= 0 && time < end; ++seen) {
        if (changes >= 2 || seen >= kMaxPerColumn) {
            trace.crowded.push_back({grid.First(column), end});
            AddSample(source, end - 1, trace);
            return source.NextEvent(end - 1);
        }
        const std::size_t count = trace.changes.size();
        AddSample(source, time, trace);
        if (count > 0 && trace.changes.size() > count &&
            !LookAlike(trace.bus, trace.changes[count].value, trace.changes[count - 1].value)) {
            ++changes;
        }
        time = source.NextEvent(time);
    }
    return time;
}

}  // namespace

Trace RecordEvents(Source& source, TimeWindow window, std::size_t max) {
    Trace trace;
    trace.bus = source.IsBus();
    trace.before = source.ValueAt(window.start - 1);
    std::int64_t time = source.NextEvent(window.start - 1);
    while (time >= 0 && time <= window.end) {
        if (trace.changes.size() >= max) {
            trace.truncated = true;
            break;
        }
        AddSample(source, time, trace);
        time = source.NextEvent(time);
    }
    return trace;
}

Trace RecordForGrid(Source& source, const TimeGrid& grid) {
    const TimeWindow window = grid.Window();
    Trace trace;
    trace.bus = source.IsBus();
    trace.before = source.ValueAt(window.start - 1);
    std::int64_t time = source.NextEvent(window.start - 1);
    while (time >= 0 && time < window.end) {
        time = RecordColumn(source, grid, time, trace);
    }
    return trace;
}

}  // namespace corv::host
