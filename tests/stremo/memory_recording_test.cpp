// Recordings that are made in memory, as the readers of other formats make them: vectors whose
// changes are held once and told element by element.

#include <gtest/gtest.h>

#include "stremo/block_builder.h"
#include "stremo/recording.h"
#include "tests/stremo/recording_model.h"

namespace corv::test {
namespace {

using recording::AllElements;
using recording::BlockBuilder;
using recording::EventOrder;
using recording::ForElements;
using recording::kNone;
using recording::SignalTable;

// Scalars and vectors of 1 to 80 elements; handles are given out by the table.
SignalTable MakeSignals(RandomModel& random) {
    SignalTable signals;
    for (int i = 1 + random.Below(5); i > 0; --i) {
        recording::Signal signal;
        signal.composite = !random.OneIn(3);
        signal.member_count = signal.composite ? 1 + static_cast<unsigned>(random.Below(80)) : 0;
        signals.Add(signal);
        recording::Signal element;
        element.joins = true;
        for (unsigned left = signal.member_count; left > 0; --left) {
            signals.Add(element);
        }
    }
    signals.Finish();
    return signals;
}

class RandomChanges {
public:
    RandomChanges(RandomModel& random, const SignalTable& signals, BlockBuilder& builder)
        : random_(random), signals_(signals), builder_(builder), values_(signals.leaf_count()) {}

    void Add(std::int64_t time) {
        const auto number =
            static_cast<std::uint32_t>(random_.Below(static_cast<int>(signals_.channel_count())));
        const recording::Channel& channel = signals_.channel(number);
        std::uint32_t mask = static_cast<std::uint32_t>(random_.Below(1 << 30)) * 5;
        mask = (random_.OneIn(3) ? ~0U : mask) & AllElements(channel.count);
        mask = mask == 0 ? 1 : mask;
        builder_.SetTime(time);
        const bool flips = random_.OneIn(2) && AreKnown(channel, mask);
        std::vector<std::uint64_t> values;
        ForElements(mask, channel.count, [&](unsigned i) {
            auto& value = values_[channel.first_leaf + i];
            const int range = random_.OneIn(9) ? 1 << 30 : 9;
            value = flips ? *value ^ 1 : static_cast<std::uint64_t>(random_.Below(range));
            values.push_back(*value);
            events_.push_back({time, signals_.LeafHandle(channel.first_leaf + i), *value});
        });
        ASSERT_TRUE(flips ? builder_.Toggle(number, mask)
                          : builder_.SetElements(number, mask, values.data()));
    }
    const std::vector<ModelEvent>& events() const { return events_; }

private:
    bool AreKnown(const recording::Channel& channel, std::uint32_t mask) const {
        bool known = true;
        ForElements(mask, channel.count,
                    [&](unsigned i) { known = known && values_[channel.first_leaf + i]; });
        return known;
    }

    RandomModel& random_;
    const SignalTable& signals_;
    BlockBuilder& builder_;
    std::vector<std::optional<std::uint64_t>> values_;
    std::vector<ModelEvent> events_;
};

std::vector<ModelEvent> BySignal(std::vector<ModelEvent> events) {
    std::stable_sort(events.begin(), events.end(),
                     [](const ModelEvent& a, const ModelEvent& b) { return a.handle < b.handle; });
    return events;
}

void Check(std::uint32_t seed, EventOrder order) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    RandomModel random(seed);
    SignalTable signals = MakeSignals(random);
    auto blocks = std::make_unique<recording::MemoryBlocks>();
    BlockBuilder builder(signals, *blocks, order, 1 + seed % 90);
    RandomChanges changes(random, signals, builder);
    std::int64_t time = 0;
    for (int i = random.Below(200); i > 0; --i) {
        changes.Add(time += random.OneIn(3) ? random.Below(50) : 0);
    }
    ASSERT_TRUE(builder.Flush());
    Model model;
    model.events = changes.events();
    const std::uint64_t count = blocks->EventCount();
    const Reader reader = recording::MakeReader(
        std::make_unique<MadeRecording>(std::move(signals), std::move(blocks)));
    const std::vector<ModelEvent> read = ReadEvents(*reader);
    EXPECT_EQ(read.size(), count);
    if (order == EventOrder::kAsWritten) {
        ASSERT_EQ(read, model.events);
    }
    // each signal's own events are the same in either order
    EXPECT_EQ(BySignal(read), BySignal(changes.events()));
    model.events = read;
    for (int i = 0; i < 4 && !read.empty(); ++i) {
        const auto any = static_cast<std::size_t>(random.Below(1 << 20)) % read.size();
        ExpectPlace(*reader, model, read[any].time + random.Below(2), read[any].handle);
        const auto cursor = recording::OwnReader(reader.get())->OpenSignal(read[any].handle);
        EXPECT_EQ(cursor->NextTime(read[any].time),
                  TimeAfter(read, read[any].handle, read[any].time));
        const std::int64_t latest = SignalInfo(*reader, read[any].handle).latest;
        EXPECT_EQ(latest, cursor->LastTime());
        EXPECT_EQ(TimeAfter(read, read[any].handle, latest - 1), latest);
        EXPECT_EQ(TimeAfter(read, read[any].handle, latest), -1);
    }
}

TEST(MemoryRecording, VectorsAreToldElementByElement) {
    for (std::uint32_t seed = 0; seed < 150; ++seed) {
        Check(seed, seed % 2 == 0 ? EventOrder::kAsWritten : EventOrder::kBySignal);
    }
}

// A wide vector takes several channels; what does not join, and other names, do not.
TEST(SignalTable, GroupsElements) {
    SignalTable signals;
    recording::Signal vector;
    vector.composite = true;
    vector.member_count = 70;
    recording::Signal element;
    element.joins = true;
    EXPECT_EQ(signals.Add(vector), 0U);
    for (int i = 0; i < 70; ++i) {
        element.handle = i == 50 ? 7 : i;  // another name of element 7
        signals.Add(element);
    }
    EXPECT_TRUE(signals.whole());
    element.handle = 100;
    signals.Add(element);
    element.composite = true;
    EXPECT_EQ(signals.Add(element), kNone);
    signals.Finish();
    EXPECT_EQ(signals.leaf_count(), 70U);
    EXPECT_EQ(signals.FindLeaf(7), 7U);
    EXPECT_EQ(signals[51].leaf, 7U);
    std::vector<std::uint32_t> counts;
    for (std::uint32_t i = 0; i < signals.channel_count(); ++i) {
        counts.push_back(signals.channel(i).count);
    }
    EXPECT_EQ(counts, (std::vector<std::uint32_t>{32, 18, 19, 1}));
    EXPECT_EQ(signals.Find(101), 0U);  // the vector's handle
    EXPECT_EQ(signals.Find(-1), kNone);
}

TEST(SignalTable, LimitsNesting) {
    SignalTable signals;
    recording::Signal composite;
    composite.composite = true;
    composite.member_count = 1;
    for (std::size_t i = 0; i < recording::kMostLevels; ++i) {
        EXPECT_NE(signals.Add(composite), kNone);
    }
    EXPECT_EQ(signals.Add(composite), kNone);
    EXPECT_FALSE(signals.whole());
}

}  // namespace
}  // namespace corv::test
