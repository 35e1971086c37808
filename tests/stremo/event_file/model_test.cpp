// Random recordings through the writer and the reader, against the plain list of their events.

#include <gtest/gtest.h>

#include "corv/stremo/streams.h"
#include "tests/stremo/recording_model.h"

namespace corv::test {
namespace {

// The latest time of a signal and its members, the events counted.
std::int64_t Latest(const Model& model, const ModelSignal& signal) {
    std::int64_t latest = signal.latest;
    for (const ModelSignal& member : signal.members) {
        latest = std::max(latest, Latest(model, member));
    }
    for (const ModelEvent& event : model.events) {
        latest = !signal.composite && event.handle == signal.handle ? std::max(latest, event.time)
                                                                    : latest;
    }
    return latest;
}

void ExpectSignal(stremo::IEventsStreamRead& reader, const Model& model, const ModelSignal& signal,
                  int handle) {
    ASSERT_NE(handle, -1);
    EXPECT_TRUE(signal.composite || handle == signal.handle);
    const SignalInfo info(reader, handle);
    const int count = info.members;
    EXPECT_EQ(info.composite, signal.composite);
    EXPECT_EQ(count, static_cast<int>(signal.members.size()));
    EXPECT_EQ(info.name, signal.name);
    EXPECT_EQ(info.mode, signal.mode);
    EXPECT_EQ(info.latest, Latest(model, signal));
    EXPECT_EQ(info.type, signal.type);
    EXPECT_STREQ(reader.GetSignalProperty(handle, "stimulator"), (signal.name + "!").c_str());
    EXPECT_EQ(reader.GetSignalProperty(handle, "VBus"), nullptr);
    for (int i = 0; i < count; ++i) {
        ExpectSignal(reader, model, signal.members[static_cast<std::size_t>(i)],
                     reader.GetSubSignalHandle(handle, i));
    }
    EXPECT_EQ(reader.GetSubSignalHandle(handle, count), -1);
    EXPECT_EQ(reader.GetSubSignalHandle(handle, -1), -1);
}

void ExpectTree(stremo::IEventsStreamRead& reader, const Model& model) {
    const int count = reader.GetSignalCount();
    ASSERT_EQ(count, static_cast<int>(model.signals.size()));
    for (int i = 0; i < count; ++i) {
        ExpectSignal(reader, model, model.signals[static_cast<std::size_t>(i)],
                     reader.GetSignalHandle(i));
    }
    EXPECT_EQ(reader.GetSignalHandle(count), -1);
}

std::int64_t RandomTime(RandomModel& random, const Model& model) {
    const std::int64_t end = model.events.empty() ? 10 : model.events.back().time;
    const auto any = static_cast<std::size_t>(random.Below(1 << 30));
    if (!model.events.empty() && !random.OneIn(4)) {
        return model.events[any % model.events.size()].time + random.Below(3) - 1;
    }
    return random.OneIn(9) ? INT64_MAX - random.Below(2)
                           : static_cast<std::int64_t>(any) % (end + 10) - 2;
}

void ExpectCursor(recording::SignalCursor& cursor, RandomModel& random, const Model& model,
                  int handle) {
    std::int64_t time = -1;
    for (int i = 0; i < 25; ++i) {
        const std::int64_t next = TimeAfter(model.events, handle, time);
        ASSERT_EQ(cursor.NextTime(time), next) << "after " << time;
        if (random.OneIn(3)) {
            const std::int64_t other = RandomTime(random, model);
            ASSERT_EQ(cursor.NextTime(other), TimeAfter(model.events, handle, other));
        }
        unsigned char bytes[16];
        const bool there = cursor.Value(time, bytes);
        ASSERT_EQ(Number(there, bytes), ValueUpTo(model.events, handle, time)) << "at " << time;
        time = next == -1 || random.OneIn(9) ? RandomTime(random, model) : next;
    }
}

void Check(std::uint32_t seed, int signals, int events, std::size_t block_changes) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    RandomModel random(seed);
    const Model model = random.Make(signals, events);
    MemoryFiles files;
    const Writer writer = Write(files, block_changes);
    ASSERT_TRUE(WriteModel(*writer, model)) << LastStreamError();
    ASSERT_TRUE(writer->Close()) << LastStreamError();
    const Reader reader = Read(files);
    ASSERT_NE(reader, nullptr) << LastStreamError();
    ExpectTree(*reader, model);
    ASSERT_EQ(ReadEvents(*reader), model.events);
    EXPECT_STREQ(LastStreamError(), "");
    for (int i = 0; i < 12; ++i) {
        const auto any = static_cast<std::size_t>(random.Below(1 << 30));
        const int handle = model.handles.empty() ? 3 : model.handles[any % model.handles.size()];
        ExpectPlace(*reader, model, RandomTime(random, model), handle);
        if (const auto cursor = recording::OwnReader(reader.get())->OpenSignal(handle)) {
            ExpectCursor(*cursor, random, model, handle);
        }
    }
}

TEST(EventFileModel, ManyBlocks) {
    for (std::uint32_t seed = 0; seed < 200; ++seed) {
        Check(seed, 6, static_cast<int>(seed), 1 + seed % 40);
    }
}

// Blocks of the usual size, and more of them than one page of the index lists.
TEST(EventFileModel, LargeRecordings) {
    Check(1000, 80, 20'000, 0);
    Check(1001, 300, 9'000, 0);
    Check(1002, 5, 6'000, 20);
}

}  // namespace
}  // namespace corv::test
