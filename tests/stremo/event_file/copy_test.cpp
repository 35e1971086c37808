#include "stremo/event_file/copy.h"

#include "tests/stremo/recording_model.h"
#include "tests/support/foreign_reader.h"
#include "tests/support/test.h"

namespace corv::test {
namespace {

// A random recording in `files`, and the model that it was written from.
struct Original {
    explicit Original(std::uint32_t seed, int events = 400)
        : model(RandomModel(seed).Make(9, events)) {
        const Writer writer = Write(files);
        EXPECT_TRUE(WriteModel(*writer, model) && writer->Close());
        reader = Read(files);
    }
    std::vector<ModelEvent> CopiedEvents(const EventFileOptions& options) {
        EXPECT_TRUE(recording::WriteEventFile(*reader, files, "run.evt", options))
            << LastStreamError();
        const Reader copied = Read(files);
        return copied != nullptr ? ReadEvents(*copied) : std::vector<ModelEvent>();
    }

    Model model;
    MemoryFiles files;
    Reader reader;
};

void AddLeaves(const ModelSignal& signal, std::vector<int>& handles) {
    if (!signal.composite) {
        handles.push_back(signal.handle);
    }
    for (const ModelSignal& member : signal.members) {
        AddLeaves(member, handles);
    }
}

// Describes a signal and everything below it, except for the latest times.
std::string SignalText(stremo::IEventsStreamRead& reader, int handle) {
    bool composite = false;
    int count = 0;
    int mode = 0;
    std::int64_t latest = 0;
    CString name;
    reader.GetSignalInfo(handle, composite, count, name, mode, latest);
    const char* const stimulator = reader.GetSignalProperty(handle, "Stimulator");
    std::string text = std::to_string(handle) + " " + std::string(name.View()) + " " +
                       std::to_string(mode) + " " + reader.GetTypeString(handle) + " " +
                       (stimulator != nullptr ? stimulator : "-") + "\n";
    for (int i = 0; composite && i < count; ++i) {
        text += SignalText(reader, reader.GetSubSignalHandle(handle, i));
    }
    return text;
}
std::string SignalText(stremo::IEventsStreamRead& reader) {
    std::string text;
    for (int i = 0; i < reader.GetSignalCount(); ++i) {
        text += SignalText(reader, reader.GetSignalHandle(i));
    }
    return text;
}

TEST(WriteEventFile, CopiesAllThereIs) {
    for (std::uint32_t seed = 0; seed < 20; ++seed) {
        Original recorded(seed);
        const std::string signals = SignalText(*recorded.reader);
        EXPECT_EQ(recorded.CopiedEvents({}), recorded.model.events) << seed;
        EXPECT_EQ(SignalText(*Read(recorded.files)), signals) << seed;
    }
}

TEST(WriteEventFile, CutsAPartOut) {
    for (std::uint32_t seed = 0; seed < 40; ++seed) {
        Original recorded(seed);
        const std::vector<ModelEvent>& events = recorded.model.events;
        EventFileOptions options;
        options.start = events[events.size() / 4].time;
        options.end = seed % 3 == 0 ? -1 : events[events.size() / 2].time;
        std::vector<int> handles;
        for (const ModelSignal& signal : recorded.model.signals) {
            if (signal.name.back() % 2 == 0) {
                AddLeaves(signal, handles);
            }
        }
        options.takes = [](const char* name, int) { return std::string(name).back() % 2 == 0; };
        std::sort(handles.begin(), handles.end());
        handles.erase(std::unique(handles.begin(), handles.end()), handles.end());

        std::vector<ModelEvent> expected;
        for (const int handle : handles) {
            if (const auto value = ValueUpTo(events, handle, options.start - 1)) {
                expected.push_back({options.start, handle, *value});
            }
        }
        const std::int64_t end =
            options.end < 0 ? std::numeric_limits<std::int64_t>::max() : options.end;
        std::copy_if(events.begin(), events.end(), std::back_inserter(expected),
                     [&](const ModelEvent& event) {
                         return event.time >= options.start && event.time <= end &&
                                std::binary_search(handles.begin(), handles.end(), event.handle);
                     });
        EXPECT_EQ(recorded.CopiedEvents(options), expected) << seed;
    }
}

TEST(WriteEventFile, SaysWhyItFails) {
    Original recorded(3, 70'000);
    const auto write = [&](const EventFileOptions& options = {}) {
        return recording::WriteEventFile(*recorded.reader, recorded.files, "copy.evt", options);
    };
    EventFileOptions ended;
    ended.progress = [](std::int64_t time) { return time < 0; };
    EXPECT_FALSE(write(ended));
    EXPECT_STREQ(LastStreamError(), "copy.evt: the writing was cancelled");
    recorded.files.LimitRoom(2'000);
    EXPECT_FALSE(write());
    EXPECT_STREQ(LastStreamError(), "copy.evt: the disk is full");
    EXPECT_FALSE(WriteEventFile(*recorded.reader, nullptr));
    EXPECT_FALSE(WriteEventFile(*recorded.reader, "/no/such/folder/x.evt"));
    EXPECT_NE(*LastStreamError(), '\0');
}

// A reader that stops short leaves a whole file with what it had.
TEST(WriteEventFile, KeepsWhatCouldBeRead) {
    class Broken final : public ForeignReader {
    public:
        using ForeignReader::ForeignReader;
        bool Seek(const std::int64_t*) override { return false; }
    };
    Original recorded(5);
    Broken broken(recorded.reader.release());
    EXPECT_FALSE(recording::WriteEventFile(broken, recorded.files, "run.evt", {}));
    EXPECT_STREQ(LastStreamError(), "run.evt: the recording cannot be read");
    const Reader copied = Read(recorded.files);
    ASSERT_NE(copied, nullptr);
    EXPECT_EQ(copied->GetSignalCount(), static_cast<int>(recorded.model.signals.size()));
    EXPECT_TRUE(ReadEvents(*copied).empty());
}

}  // namespace
}  // namespace corv::test
