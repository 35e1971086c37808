#pragma once

#include "corv/stremo/events_stream_read.h"
#include "corv/stremo/events_stream_write.h"
#include "corv/stremo/streams.h"
#include "stremo/event_file/writer.h"
#include "stremo/format.h"
#include "stremo/recording_reader.h"
#include "stremo/signal_cursor.h"
#include "tests/support/recorded.h"
#include "tests/support/test.h"

// A recording in its plainest form, random ones, and what a reader must say of them.
namespace corv::test {

struct ModelSignal {
    std::string name;
    std::string type;
    int handle = -1;
    int mode = 0;
    std::int64_t latest = -1;
    std::vector<ModelSignal> members;
    bool composite = false;
};

struct ModelEvent {
    std::int64_t time;
    int handle;
    std::uint64_t value;
    bool operator==(const ModelEvent&) const = default;
};

struct Model {
    std::vector<ModelSignal> signals;
    std::vector<ModelEvent> events;
    std::vector<int> handles;  // of the scalars
};

inline void PrintTo(const ModelEvent& event, std::ostream* out) {
    *out << event.time << " " << event.handle << "=" << event.value;
}

// A recording of signals and blocks that a test has made.
class MadeRecording final : public recording::Recording {
public:
    MadeRecording(recording::SignalTable signals, std::unique_ptr<recording::BlockStore> blocks)
        : Recording("made"), blocks_(std::move(blocks)) {
        signals_ = std::move(signals);
    }
    const char* FormatName() const noexcept override { return "made"; }
    std::unique_ptr<recording::BlockStore> OpenBlocks(std::span<const std::uint32_t>) override {
        return std::move(blocks_);
    }
    bool KnowsLatestTimes() const noexcept override { return false; }

private:
    std::unique_ptr<recording::BlockStore> blocks_;
};

// ---- random recordings ----

class RandomModel {
public:
    explicit RandomModel(std::uint32_t seed) : random_(seed) {}

    Model Make(int most_signals, int events) {
        Model model;
        for (int i = 1 + Below(most_signals); i > 0; --i) {
            model.signals.push_back(MakeSignal(model, "s" + std::to_string(i), 0));
        }
        MakeEvents(model, events);
        return model;
    }
    int Below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }
    bool OneIn(int n) { return Below(n) == 0; }

private:
    ModelSignal MakeSignal(Model& model, const std::string& name, int depth) {
        ModelSignal signal;
        signal.name = name;
        signal.mode = Below(5) - 1;
        signal.latest = OneIn(2) ? -1 : Below(1000);
        if (depth < 3 && OneIn(3)) {
            signal.composite = true;
            const bool array = OneIn(2);
            signal.type = array ? "a#0#" : "";
            for (int i = array ? 1 + Below(70) : 1 + Below(4); i > 0; --i) {
                const std::string member = array ? "(" + std::to_string(i) + ")" : ".f";
                signal.members.push_back(MakeSignal(model, member, array ? 3 : depth + 1));
            }
            return signal;
        }
        signal.type = OneIn(3) ? "" : OneIn(2) ? "e#9#std_logicc9 UX01ZWLH-" : "f#4#realrrct0 1";
        const bool again = !model.handles.empty() && OneIn(9);
        signal.handle = again         ? model.handles[Index(model.handles.size())]
                        : OneIn(1000) ? 2147483647
                                      : next_handle_++ * (OneIn(50) ? 100 : 1);
        next_handle_ = std::max(next_handle_, signal.handle % 1'000'000 + 1);
        model.handles.push_back(signal.handle);
        return signal;
    }

    // Bursts at one time, neighbours in order, single events with long gaps; toggles, counts, and
    // any values.
    void MakeEvents(Model& model, int count) {
        std::map<int, std::uint64_t> values;
        std::int64_t time = OneIn(2) ? 0 : Below(1'000'000);
        const std::uint64_t step = OneIn(2) ? 5000 : 1;
        const bool repeats = OneIn(2);
        std::size_t at = 0;
        for (int i = 0; i < count && !model.handles.empty(); ++i) {
            if (!OneIn(3)) {
                at = OneIn(2) ? Index(model.handles.size()) : (at + 1) % model.handles.size();
            }
            if (OneIn(4)) {
                time += static_cast<std::int64_t>(
                    step * (1 + random_() % (OneIn(100) ? 10'000'000'000 : 3)));
            }
            const auto known = values.find(model.handles[at]);
            const std::uint64_t before = known == values.end() ? 2 : known->second;
            std::uint64_t value = before ^ 1;
            if (OneIn(4)) {
                value = OneIn(2) ? before + 1 : OneIn(2) ? random_() % 9 : random_();
            }
            value = repeats && OneIn(10) ? before : value;
            values[model.handles[at]] = value;
            model.events.push_back({time, model.handles[at], value});
        }
    }
    std::size_t Index(std::size_t size) { return static_cast<std::size_t>(random_() % size); }

    std::mt19937_64 random_;
    int next_handle_ = 3;
};

// ---- writing ----

using Reader = std::unique_ptr<stremo::IEventsStreamRead>;
using Writer = std::unique_ptr<IEventsStreamWrite>;

// The file is named "run.evt".
inline Writer Write(MemoryFiles& files, std::size_t block_changes = 0) {
    auto created = files.Create("run.evt");
    return recording::MakeEventFileWriter("run.evt", std::move(created.file), block_changes);
}
inline Reader Read(MemoryFiles& files) {
    return ReaderOf(recording::OpenRecording(files, "run.evt"));
}

inline bool WriteSignal(IEventsStreamWrite& writer, const ModelSignal& signal, int index) {
    const char* const name = signal.name.c_str();
    const bool written =
        signal.composite
            ? writer.WriteCompositeSignal(signal.handle,
                                          static_cast<std::uint32_t>(signal.members.size()), name,
                                          -1, index, signal.mode, &signal.latest)
            : writer.WriteScalarSignal(signal.handle, name, -1, index, signal.mode, &signal.latest);
    if (!written ||
        !writer.WriteProperty(signal.handle, "Stimulator", (signal.name + "!").c_str()) ||
        !(signal.type.empty() || writer.WriteTypeInfo(signal.handle, signal.type.c_str()))) {
        return false;
    }
    for (std::size_t i = 0; i < signal.members.size(); ++i) {
        if (!WriteSignal(writer, signal.members[i], static_cast<int>(i))) {
            return false;
        }
    }
    return true;
}

inline bool WriteModel(IEventsStreamWrite& writer, const Model& model) {
    for (const ModelSignal& signal : model.signals) {
        if (!WriteSignal(writer, signal, -1)) {
            return false;
        }
    }
    for (const ModelEvent& event : model.events) {
        if (!writer.WriteEvent(event.handle, &event.time, &event.value, 8)) {
            return false;
        }
    }
    return true;
}

// ---- reading ----

inline std::optional<std::uint64_t> Number(bool there, const unsigned char (&bytes)[16]) {
    std::uint64_t value = 0;
    for (int i = 15; i >= 0; --i) {
        EXPECT_TRUE(!there || i < 8 || bytes[i] == 0);
        value = value << 8 | bytes[i];
    }
    return there ? std::optional(value) : std::nullopt;
}

inline std::optional<std::uint64_t> Cached(stremo::IEventsStreamRead& reader, int handle) {
    unsigned char bytes[16];
    std::memset(bytes, 0xA5, sizeof bytes);
    const bool there = reader.GetCachedValue(handle, bytes);
    return Number(there, bytes);
}

// The next event; nothing at the end or after a failure.
inline std::optional<ModelEvent> NextEvent(stremo::IEventsStreamRead& reader) {
    const int handle = reader.Next();
    unsigned char bytes[16];
    std::memset(bytes, 0xA5, sizeof bytes);
    const std::optional<std::uint64_t> value = Number(reader.ReadValue(bytes), bytes);
    EXPECT_EQ(value.has_value(), handle != -1);
    return handle == -1 ? std::nullopt
                        : std::optional(ModelEvent{*reader.GetCurrentTime(), handle, *value});
}

inline std::vector<ModelEvent> ReadEvents(stremo::IEventsStreamRead& reader) {
    std::vector<ModelEvent> events;
    while (const std::optional<ModelEvent> event = NextEvent(reader)) {
        events.push_back(*event);
    }
    return events;
}

// What the plain list says of a signal.
inline std::optional<std::uint64_t> ValueUpTo(const std::vector<ModelEvent>& events, int handle,
                                              std::int64_t time) {
    std::optional<std::uint64_t> value;
    for (const ModelEvent& event : events) {
        if (event.time <= time && event.handle == handle) {
            value = event.value;
        }
    }
    return value;
}
inline std::int64_t TimeAfter(const std::vector<ModelEvent>& events, int handle,
                              std::int64_t time) {
    const auto found = std::find_if(events.begin(), events.end(), [&](const ModelEvent& event) {
        return event.time > time && event.handle == handle;
    });
    return found == events.end() ? -1 : found->time;
}

// Questions at a time, from scratch.
inline void ExpectPlace(stremo::IEventsStreamRead& reader, const Model& model, std::int64_t time,
                        int handle) {
    const auto first = std::find_if(model.events.begin(), model.events.end(),
                                    [&](const ModelEvent& event) { return event.time >= time; });
    ASSERT_TRUE(reader.Seek(&time)) << LastStreamError();
    EXPECT_EQ(*reader.GetCurrentTime(), first == model.events.begin() ? -1 : first[-1].time);
    const auto before = ValueUpTo(model.events, handle, time - 1);
    EXPECT_EQ(Cached(reader, handle), before);
    for (auto at = first; at != model.events.end() && at - first < 3; ++at) {
        EXPECT_EQ(NextEvent(reader), *at);
    }
    EXPECT_EQ(Cached(reader, handle), before);
}

}  // namespace corv::test
