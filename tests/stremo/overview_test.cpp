// What a picture can show of a recording, against the plain list of its events.

#include "corv/stremo/stream_overview.h"

#include "tests/stremo/recording_model.h"
#include "tests/support/test.h"

namespace corv::test {
namespace {

class Collected final : public IStreamOverview {
public:
    void Take(int handle, std::int64_t time, const void* value) override {
        std::uint64_t number = 0;
        std::memcpy(&number, value, sizeof number);
        events[handle].push_back({time, handle, number});
    }
    std::map<int, std::vector<ModelEvent>> events;
};

// The changes of one scalar's value: of several events at one time the last counts.
std::vector<ModelEvent> Changes(const Model& model, int handle) {
    std::vector<ModelEvent> changes;
    std::optional<std::uint64_t> value;
    for (std::size_t i = 0; i < model.events.size(); ++i) {
        if (model.events[i].handle != handle) {
            continue;
        }
        const auto later = std::find_if(
            model.events.begin() + static_cast<std::ptrdiff_t>(i) + 1, model.events.end(),
            [&](const ModelEvent& event) { return event.handle == handle; });
        const bool last = later == model.events.end() || later->time != model.events[i].time;
        if (last && value != model.events[i].value) {
            value = model.events[i].value;
            changes.push_back(model.events[i]);
        }
    }
    return changes;
}

std::vector<ModelEvent> Thinned(const std::vector<ModelEvent>& changes,
                                const std::vector<std::int64_t>& borders) {
    std::vector<ModelEvent> thinned;
    for (std::size_t column = 0; column + 1 < borders.size(); ++column) {
        std::vector<ModelEvent> inside;
        for (const ModelEvent& change : changes) {
            if (change.time >= borders[column] && change.time < borders[column + 1]) {
                inside.push_back(change);
            }
        }
        for (std::size_t i = 0; i < inside.size(); ++i) {
            if (i < 2 || i + 1 == inside.size()) {
                thinned.push_back(inside[i]);
            }
        }
    }
    return thinned;
}

std::vector<std::int64_t> RandomBorders(RandomModel& random, std::int64_t end) {
    std::vector<std::int64_t> borders{random.Below(4) == 0 ? 0 : end / (1 + random.Below(9))};
    for (int i = 1 + random.Below(40); i > 0; --i) {
        borders.push_back(borders.back() + (end + 20) / (1 + random.Below(60)));
    }
    return borders;
}

TEST(ReadStreamOverview, TellsWhatAScanOfAllEventsTells) {
    std::size_t left_out = 0;
    for (std::uint32_t seed = 0; seed < 400; ++seed) {
        RandomModel random(seed);
        const Model model = random.Make(1 + random.Below(20), 600);
        MemoryFiles files;
        const auto writer = Write(files, 1 + static_cast<std::size_t>(random.Below(80)));
        ASSERT_TRUE(WriteModel(*writer, model) && writer->Close());
        const auto reader = Read(files);
        ASSERT_TRUE(reader);
        const std::int64_t end = model.events.empty() ? 9 : model.events.back().time;
        const auto borders = RandomBorders(random, end);
        std::vector<int> handles{-1, 123456789};
        for (const int handle : model.handles) {
            if (random.OneIn(2)) {
                handles.push_back(handle);
            }
        }
        Collected collected;
        ASSERT_TRUE(ReadStreamOverview(*reader, handles, borders, collected)) << LastStreamError();
        const std::set<int> asked(handles.begin() + 2, handles.end());
        EXPECT_LE(collected.events.size(), asked.size());
        for (const int handle : asked) {
            const auto changes = Changes(model, handle);
            const auto expected = Thinned(changes, borders);
            EXPECT_EQ(collected.events[handle], expected) << seed << " " << handle;
            left_out += changes.size() - expected.size();
        }
    }
    EXPECT_GT(left_out, 1000U);
}

// Few scalars of many, which are looked up one by one.
TEST(ReadStreamOverview, FindsOneOfManySignals) {
    Model model;
    for (int i = 0; i < 300; ++i) {
        ModelSignal signal;
        signal.name = "s" + std::to_string(i);
        signal.handle = i;
        model.signals.push_back(signal);
    }
    for (int i = 0; i < 3000; ++i) {
        model.events.push_back({i / 7, i % 300, static_cast<std::uint64_t>(i / 300)});
    }
    MemoryFiles files;
    const auto writer = Write(files, 100);
    ASSERT_TRUE(WriteModel(*writer, model) && writer->Close());
    const auto reader = Read(files);
    const std::vector<std::int64_t> borders{50, 120, 300};
    for (const int handle : {0, 7, 299}) {
        Collected collected;
        ASSERT_TRUE(ReadStreamOverview(*reader, {&handle, 1}, borders, collected));
        EXPECT_EQ(collected.events[handle], Thinned(Changes(model, handle), borders));
    }
}

}  // namespace
}  // namespace corv::test
