#include "host/signal_trace.h"

#include <algorithm>
#include <queue>
#include <utility>
#include <vector>

#include "corv/frame/com_ptr.h"

namespace corv::host {
namespace {

// Merges the events of a signal's leaves in order of time, with a queue of each leaf's next one.
class LeafEvents {
public:
    LeafEvents(ISignal& signal, std::int64_t start) {
        const std::vector<ISignal*> leaves = LeavesOf(signal);
        values_.resize(leaves.size());
        events_.resize(leaves.size());
        for (std::size_t i = 0; i < leaves.size(); ++i) {
            if (SUCCEEDED(leaves[i]->EnumEvents(events_[i].Out()))) {
                if (FAILED(events_[i]->Seek(start, FindBefore))) {
                    events_[i]->Reset();
                }
                Expect(i);
            }
        }
    }

    // Returns the time of the next event, -1 if there is none.
    std::int64_t NextTime() const { return next_.empty() ? -1 : next_.top().first; }

    // Takes all events at that time.
    void Take() {
        for (const std::int64_t time = NextTime(); !next_.empty() && next_.top().first == time;) {
            const std::size_t leaf = next_.top().second;
            next_.pop();
            IWaveEvent* event = nullptr;
            if (events_[leaf]->Next(1, &event, nullptr) == S_OK) {
                values_[leaf].known = true;
                event->GetValue(values_[leaf].bytes.data(), 8);
                Expect(leaf);
            }
        }
    }

    std::span<const LeafValue> Values() const { return values_; }

private:
    void Expect(std::size_t leaf) {
        if (const std::int64_t time = events_[leaf]->CurrentTime(); time >= 0) {
            next_.emplace(time, leaf);
        }
    }

    using Due = std::pair<std::int64_t, std::size_t>;  // the time of a leaf's next event
    std::vector<LeafValue> values_;
    std::vector<frame::ComPtr<IWaveEventEnumerator>> events_;
    std::priority_queue<Due, std::vector<Due>, std::greater<>> next_;
};

}  // namespace

Trace ReadTrace(ISignal& signal, TimeWindow window,
                const std::function<std::string(std::span<const LeafValue>)>& text_of,
                std::size_t most) {
    Trace trace;
    trace.bus = signal.GetSubSignals() != nullptr;
    LeafEvents events(signal, window.start);
    bool any = false;
    while (events.NextTime() >= 0 && events.NextTime() < window.start) {
        events.Take();
        any = true;
    }
    if (any) {
        trace.before = text_of(events.Values());
    }
    while (events.NextTime() >= 0 && events.NextTime() <= window.end) {
        if (trace.changes.size() == most) {
            trace.truncated = true;
            break;
        }
        const std::int64_t time = events.NextTime();
        events.Take();
        trace.changes.push_back({time, text_of(events.Values())});
    }
    return trace;
}

Trace ReadTrace(ISignal& signal, TimeWindow window, const BusFormat& format, std::size_t most) {
    bool as_characters = true;
    const BusFormat watched = [&](std::string_view characters, BusKind kind) {
        std::string text = format(characters, kind);
        as_characters &= text == characters;
        return text;
    };
    const ValueWriter writer(signal, watched);
    Trace trace = ReadTrace(
        signal, window, [&](std::span<const LeafValue> values) { return writer.Text(values); },
        most);
    trace.plain = !writer.HasLevels();
    trace.binary = trace.bus && writer.HasLevels() && as_characters;
    return trace;
}

}  // namespace corv::host
