// The merged events of a bus's leaves against a merge as plainly as it can be written.

#include "corv/signals/bus_event_iterator.h"
#include "corv/frame/com_ptr.h"
#include "corv/signals/signal.h"
#include "tests/signals/foreign_wave.h"
#include "tests/signals/signal_support.h"
#include "tests/support/test.h"
#include "tests/waves/naive_wave.h"

namespace corv::test {
namespace {

using frame::ComPtr;

constexpr const char* kInteger = "i#7#integerrict-2147483648 2147483647";
constexpr const char* kReal = "f#4#realrrct-1 1";

std::string RecordOf(const std::vector<std::string>& fields) {
    std::string text = "r#1#b" + std::to_string(fields.size()) + ' ';
    for (std::size_t i = 0; i < fields.size(); ++i) {
        text += (i == 0 ? "f" : " f") + std::to_string(i) + ' ' + fields[i];
    }
    return text;
}

ComPtr<IBusEventIterator> Iterate(ISignal& bus) {
    ComPtr<IBusEventIterator> events;
    EXPECT_EQ(CreateBusEventIterator(&bus, events.Out()), S_OK);
    return events;
}

// The two passes over all leaves.
class NaiveBus {
public:
    struct Leaf {
        explicit Leaf(std::size_t size) : wave(size) {}
        NaiveWave wave;
        std::size_t next = 0;
        std::optional<NaiveWave::Event> current;

        std::int64_t NextTime() const {
            return next < wave.Events().size() ? wave.Events()[next].time : -1;
        }
        void Show() {
            current =
                next < wave.Events().size() ? std::optional(wave.Events()[next]) : std::nullopt;
        }
    };

    bool Next() {
        time = -1;
        for (const Leaf& leaf : leaves) {
            if (leaf.wave.Events().empty()) {
                time = -1;
                return false;
            }
            const std::int64_t t = leaf.NextTime();
            time = t != -1 && (time == -1 || t < time) ? t : time;
        }
        for (Leaf& leaf : leaves) {
            if (time != -1 && leaf.NextTime() == time) {
                leaf.current = leaf.wave.Events()[leaf.next++];
            }
        }
        return time != -1;
    }
    void Reset() {
        time = -1;
        for (Leaf& leaf : leaves) {
            leaf.next = 0;
            leaf.Show();
        }
    }
    HRESULT Seek(std::int64_t t, std::uint32_t mode) {
        bool failed = false;
        bool exact = mode != FindAt;
        for (Leaf& leaf : leaves) {
            const auto found = leaf.wave.Find(t, mode == FindAt ? FindAtOrBefore : mode);
            failed = failed || !found;
            if (!failed) {
                leaf.next = *found;
                exact = exact || leaf.wave.Events()[*found].time == t;
            }
            leaf.Show();
        }
        return failed || !exact ? E_FAIL : S_OK;
    }
    std::uint8_t Flags() const {
        bool all = true;
        bool any = false;
        for (const Leaf& leaf : leaves) {
            if (leaf.current && leaf.current->time == time) {
                all = all && leaf.current->flags % 2 == 1;
                any = any || leaf.current->flags >= 2;
            }
        }
        return static_cast<std::uint8_t>((all ? 1 : 0) + (any ? 2 : 0));
    }

    std::vector<Leaf> leaves;
    std::int64_t time = -1;
};

enum Pattern { kOwnTimes, kTogether, kMixed, kUnsorted, kPatterns };

// A bus of random leaves, its iterator, and the model of both.
class Pair {
public:
    explicit Pair(std::uint32_t seed) : random_(seed) {
        pattern_ = static_cast<Pattern>(random_.Below(kPatterns));
        std::vector<std::string> fields(1 + random_.Below(70));
        for (std::string& field : fields) {
            field = random_.OneIn(4) ? kReal : kInteger;
            model_.leaves.emplace_back(field == kReal ? 8 : 4);
        }
        bus_ = MakeSignal(RecordOf(fields));
        const bool has_empty_leaf = random_.OneIn(12);
        for (std::size_t i = 0; i < fields.size(); ++i) {
            ISignal& leaf = MemberAt(*bus_, i);
            if (random_.OneIn(4)) {
                leaf.SetWave(MakeForeignWave(leaf.GetWaveValueSize()).get());
            }
            if (!has_empty_leaf || !random_.OneIn(10)) {
                Fill(*leaf.GetWave(), model_.leaves[i].wave);
            }
        }
        events_ = Iterate(*bus_);
    }

    void Compare() {
        std::uint32_t size = 0;
        IBusEvent& event = *events_->GetEvent();
        ASSERT_EQ(event.GetTime(), model_.time);
        ASSERT_EQ(event.GetFlags(), model_.Flags());
        ASSERT_EQ(static_cast<std::size_t>(event.GetCount()), model_.leaves.size());
        for (std::uint32_t i = 0; i < model_.leaves.size(); ++i) {
            const auto& current = model_.leaves[i].current;
            std::uint64_t value = 0;
            const std::uint32_t copied = event.GetValue(i, &value, sizeof value);
            ASSERT_EQ(copied, current ? event.GetValueSize(i) : 0) << i;
            ASSERT_EQ(value, current ? current->value : 0) << i;
            ASSERT_EQ(event.GetValueData(i) != nullptr, current.has_value()) << i;
            size += event.GetValueSize(i);
        }
        ASSERT_EQ(events_->GetSize(), size);
    }

    void Step() {
        if (random_.OneIn(300)) {
            events_->Reset();
            model_.Reset();
        } else if (random_.OneIn(100) && pattern_ != kUnsorted) {
            const std::int64_t time = RandomTime();
            const auto mode = static_cast<std::uint32_t>(random_.Below(6));
            ASSERT_EQ(events_->Seek(time, mode), model_.Seek(time, mode)) << time << ' ' << mode;
        } else {
            ASSERT_EQ(events_->Next(), model_.Next() ? S_OK : S_FALSE);
        }
    }

private:
    static constexpr std::int64_t kSpan = 3000;
    std::int64_t RandomTime() { return static_cast<std::int64_t>(random_.Below(kSpan)) - 40; }

    std::int64_t TimeOf(std::size_t index) {
        const auto clock = static_cast<std::int64_t>(index) * 100 - 40;
        switch (pattern_) {
            case kTogether:
                return clock;
            case kMixed:
                return index % 8 < 4 ? clock : clock + static_cast<std::int64_t>(random_.Below(99));
            default:
                return RandomTime();
        }
    }
    void Fill(ISignalWave& wave, NaiveWave& model) {
        std::vector<std::int64_t> times(1 + random_.Below(30));
        for (std::size_t i = 0; i < times.size(); ++i) {
            times[i] = TimeOf(i);
        }
        if (pattern_ != kUnsorted) {
            std::sort(times.begin(), times.end());
        }
        for (const std::int64_t time : times) {
            const std::uint64_t value = random_.Bits();
            const auto size = wave.GetValueSize();
            const bool marked = random_.OneIn(3);
            marked ? wave.AddMarkedEvent(time, 0, &value, size)
                   : wave.AddEvent(time, 0, &value, size);
            model.Add(time, 0, &value, size, marked);
        }
        for (std::size_t i = random_.Below(4); i > 0 && pattern_ != kTogether; --i) {
            const std::uint64_t value = random_.Bits();  // several events at one time
            wave.AddPendingEvent(times[0], &value, wave.GetValueSize());
            model.AddPending(times[0], &value, wave.GetValueSize());
        }
        wave.CommitPendingEvents();
        model.Commit();
    }

    Random random_;
    Pattern pattern_;
    NaiveBus model_;
    ComPtr<ISignal> bus_;
    ComPtr<IBusEventIterator> events_;
};

TEST(BusEventIterator, MergesAsTheTwoPassesDo) {
    for (std::uint32_t seed = 0; seed < 150; ++seed) {
        SCOPED_TRACE(seed);
        Pair pair(seed);
        pair.Compare();
        for (int step = 0; step < 800 && !testing::Test::HasFatalFailure(); ++step) {
            pair.Step();
            pair.Compare();
        }
        if (testing::Test::HasFatalFailure()) {
            return;
        }
    }
}

void AddEvent(ISignal& leaf, std::int64_t time, std::uint64_t value) {
    leaf.GetWave()->AddEvent(time, 0, &value, leaf.GetWaveValueSize());
}

TEST(BusEventIterator, EndsOfTimeAreTimes) {
    constexpr std::int64_t kMin = std::numeric_limits<std::int64_t>::min();
    constexpr std::int64_t kMax = std::numeric_limits<std::int64_t>::max();
    const auto bus = MakeSignal(RecordOf({kInteger, kInteger}));
    for (const std::int64_t time : {kMin, std::int64_t{-2}, std::int64_t{0}, kMax}) {
        AddEvent(MemberAt(*bus, 0), time, 1);
    }
    AddEvent(MemberAt(*bus, 1), kMax, 2);
    const auto events = Iterate(*bus);
    for (const std::int64_t time : {kMin, std::int64_t{-2}, std::int64_t{0}, kMax}) {
        ASSERT_EQ(events->Next(), S_OK);
        EXPECT_EQ(events->GetEvent()->GetTime(), time);
    }
    EXPECT_EQ(events->Next(), S_FALSE);
}

TEST(BusEventIterator, LeavesAreThoseBelowInOrder) {
    const auto bus = MakeSignal(RecordOf(
        {kInteger, RecordOf({kReal, RecordOf({}), kInteger}), "a#1#v1 rict0 1 e#3#bitc2 01"}));
    const auto empty = MakeSignal("");
    bus->GetSubSignals()->Add(empty.get());  // has neither a wave nor members
    const auto events = Iterate(*bus);
    IBusEvent& event = *events->GetEvent();
    EXPECT_EQ(event.GetCount(), 5);
    EXPECT_EQ(event.GetValueCount(), 5);
    EXPECT_EQ(events->GetSize(), 24u);
    const std::array<std::uint32_t, 6> sizes{4, 8, 4, 4, 4, 0};
    for (std::uint32_t i = 0; i < sizes.size(); ++i) {
        EXPECT_EQ(event.GetValueSize(i), sizes[i]) << i;
    }
    std::uint64_t value = 0;
    EXPECT_EQ(event.GetValue(5, &value, sizeof value), 0u);
    EXPECT_EQ(event.GetValueData(5), nullptr);
    EXPECT_EQ(event.GetTime(), -1);
    EXPECT_EQ(events->Next(), S_FALSE);
}

TEST(BusEventIterator, HoldsItsEnumeratorsAndNothingElse) {
    const auto bus = MakeSignal(RecordOf({kInteger, kInteger}));
    ComPtr<ISignalWave> wave = MakeForeignWave(4);
    auto& foreign = static_cast<ForeignWave&>(*wave);
    MemberAt(*bus, 1).SetWave(wave.get());
    {
        const auto events = Iterate(*bus);
        EXPECT_EQ(foreign.enumerators, 1);
        EXPECT_EQ(bus->AddRef(), 2u);
        EXPECT_EQ(bus->Release(), 1u);
        EXPECT_EQ(wave->AddRef(), 3u);
        EXPECT_EQ(wave->Release(), 2u);
    }
    EXPECT_EQ(foreign.enumerators, 0);
}

TEST(BusEventIterator, CantBeMade) {
    const auto scalar = MakeSignal(kInteger);
    const auto bus = MakeSignal(RecordOf({kInteger, RecordOf({kInteger})}));
    IBusEventIterator* events = nullptr;
    EXPECT_EQ(CreateBusEventIterator(scalar.get(), &events), E_INVALIDARG);
    ComPtr<ISignalWave> wave = MakeForeignWave(4);
    static_cast<ForeignWave&>(*wave).refuses = true;
    MemberAt(MemberAt(*bus, 1), 0).SetWave(wave.get());
    EXPECT_EQ(CreateBusEventIterator(bus.get(), &events), E_FAIL);

    const auto loop = MakeSignal(RecordOf({}));
    loop->GetSubSignals()->Add(loop.get());  // members without an end
    EXPECT_EQ(CreateBusEventIterator(loop.get(), &events), E_FAIL);
    loop->GetSubSignals()->Remove(loop.get());
    EXPECT_EQ(events, nullptr);
}

TEST(BusEventIterator, RunsOutOfMemory) {
    const auto bus = MakeSignal(RecordOf({kInteger, RecordOf({kReal, kInteger}), kInteger}));
    ComPtr<IBusEventIterator> events;
    FailEveryAllocation([&] { events = {}; },
                        [&] { return CreateBusEventIterator(bus.get(), events.Out()); },
                        [&](HRESULT result) {
                            EXPECT_TRUE(result == E_OUTOFMEMORY || result == E_FAIL);
                            EXPECT_FALSE(events);
                        });
}

// What the steps give then is not defined, but each is one.
TEST(BusEventIterator, OutlivesChangesOfItsWaves) {
    Random random(1);
    const auto bus = MakeSignal(RecordOf(std::vector<std::string>(40, kInteger)));
    const auto events = Iterate(*bus);
    for (int i = 0; i < 20'000; ++i) {
        ISignal& leaf = MemberAt(*bus, random.Below(40));
        const auto time = static_cast<std::int64_t>(random.Below(1000));
        if (random.OneIn(100)) {
            leaf.GetWave()->Clear();
        } else if (random.OneIn(10)) {
            leaf.GetWave()->RemoveEvent(time);
        } else if (random.OneIn(2)) {
            AddEvent(leaf, std::max(leaf.GetWave()->GetLastTime(), time), 7);
        } else if (random.OneIn(50)) {
            events->Seek(time, static_cast<std::uint32_t>(random.Below(5)));
        } else {
            events->Next();
        }
    }
    for (std::size_t i = 0; i < 40; ++i) {
        MemberAt(*bus, i).GetWave()->Clear();
        AddEvent(MemberAt(*bus, i), 5, i);
    }
    events->Reset();
    EXPECT_EQ(events->Next(), S_OK);
    EXPECT_EQ(events->GetEvent()->GetTime(), 5);
    EXPECT_EQ(events->Next(), S_FALSE);
}

TEST(BusEventIterator, GoesOnWithEventsAddedAtTheEnd) {
    const auto bus = MakeSignal(RecordOf({kInteger, kInteger}));
    const auto events = Iterate(*bus);
    EXPECT_EQ(events->Next(), S_FALSE);
    AddEvent(MemberAt(*bus, 0), 5, 1);
    EXPECT_EQ(events->Next(), S_FALSE);  // the other leaf has none yet
    AddEvent(MemberAt(*bus, 1), 7, 1);
    for (const std::int64_t time : {5, 7}) {
        EXPECT_EQ(events->Next(), S_OK);
        EXPECT_EQ(events->GetEvent()->GetTime(), time);
    }
}

}  // namespace
}  // namespace corv::test
