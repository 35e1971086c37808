// Walking a bus beside a loser tree over the same events, and the text of a vector at a time beside
// bisections of the same lists. The events of both are the same virtual records.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "corv/frame/com_ptr.h"
#include "corv/signals/bus_event_iterator.h"
#include "corv/signals/signal.h"

namespace {

using corv::frame::ComPtr;

class PlainEvent final : public IWaveEvent {
public:
    PlainEvent(std::int64_t at, std::uint32_t v) : time(at), value(v) {}
    std::int64_t GetTime() override { return time; }
    std::uint32_t GetValueSize() override { return sizeof value; }
    bool SetValue(const void*, int) override { return false; }
    std::uint32_t GetValue(void* buffer, std::uint32_t) override {
        std::memcpy(buffer, &value, sizeof value);
        return sizeof value;
    }
    void* GetValueData() override { return &value; }
    std::uint8_t GetFlags() override { return flags; }
    std::uint8_t SetFlags(std::uint8_t f) override { return flags = f; }

    std::int64_t time;
    std::uint32_t value;
    std::uint8_t flags = 0;
};
using PlainLists = std::vector<std::vector<PlainEvent>>;

enum Pattern { kOwnTimes, kClocked, kMixed };

// Lists of events in order, so many in all: each list at its own times; at the ticks of a clock,
// where every second one changes; or now this and now that.
PlainLists MakeLists(std::size_t leaves, std::size_t events, Pattern pattern) {
    PlainLists lists(leaves);
    std::mt19937_64 random(11);
    std::vector<std::int64_t> times(leaves, 0);
    const std::size_t each = events / leaves;
    std::int64_t tick = 0;
    const auto add = [&](std::size_t leaf, std::int64_t time) {
        times[leaf] = time;
        lists[leaf].emplace_back(time, static_cast<std::uint32_t>(random() % 9));
    };
    while (lists[0].size() < each) {
        const std::size_t run = pattern == kMixed ? 1 + random() % 3 : 1;
        for (std::size_t i = 0; pattern != kOwnTimes && i < run; ++i) {
            tick += 1'000'000;
            for (std::size_t leaf = 0; leaf < leaves; ++leaf) {
                if (random() % 2 == 0) {
                    add(leaf, tick);
                }
            }
        }
        for (std::size_t leaf = 0; pattern != kClocked && leaf < leaves; ++leaf) {
            add(leaf,
                std::max(times[leaf], tick) + 1 + static_cast<std::int64_t>(random() % 400'000));
        }
        tick = pattern == kMixed ? tick + 1'000'000 : tick;
    }
    return lists;
}

std::size_t CountOf(const PlainLists& lists) {
    std::size_t count = 0;
    for (const auto& list : lists) {
        count += list.size();
    }
    return count;
}

// A bus of std_logic leaves with these events.
ComPtr<ISignal> MakeBus(const PlainLists& lists) {
    const std::string rows = std::to_string((lists.size() + 255) / 256 - 1);
    const std::string columns = std::to_string(std::min<std::size_t>(lists.size(), 256) - 1);
    const std::string type =
        "a#1#v2 rict0 " + rows + " rict0 " + columns + " e#9#std_logicc9 UX01ZWLH-";
    ComPtr<ISignal> bus;
    CreateSignal(type.c_str(), nullptr, bus.Out());
    for (std::size_t i = 0; i < lists.size(); ++i) {
        ISignal* leaf = nullptr;
        bus->GetSubSignals()->GetAt(static_cast<std::uint32_t>(i), &leaf);
        for (const PlainEvent& event : lists[i]) {
            leaf->GetWave()->AddEvent(event.time, 0, &event.value, sizeof event.value);
        }
    }
    return bus;
}

// ---- iteration ----

// Merges lists: a tree of the losers of matches between the lists' next times, played without
// branches. Gives the sum of the times at which anything changes.
class Merge {
public:
    explicit Merge(PlainLists& lists) : lists_(lists), next_(lists.size()), current(lists.size()) {
        while (size_ < lists.size()) {
            size_ *= 2;
        }
        times_.resize(2 * size_);
        leaves_.resize(2 * size_);
    }

    std::int64_t Run() {
        std::fill(next_.begin(), next_.end(), 0);
        Build();
        std::int64_t sum = 0;
        std::int64_t last = -1;
        while (times_[0] != kEnd) {
            const std::uint32_t leaf = leaves_[0];
            const std::int64_t time = times_[0];
            sum += time != last ? time : 0;
            last = time;
            current[leaf] = &lists_[leaf][next_[leaf]++];
            Replay(leaf, NextTime(leaf));
        }
        return sum;
    }

private:
    static constexpr std::int64_t kEnd = std::numeric_limits<std::int64_t>::max();

    std::int64_t NextTime(std::size_t leaf) const {
        return leaf < lists_.size() && next_[leaf] < lists_[leaf].size()
                   ? lists_[leaf][next_[leaf]].time
                   : kEnd;
    }
    void Build() {
        std::vector<std::int64_t> winner_times(2 * size_);
        std::vector<std::uint32_t> winners(2 * size_);
        for (std::size_t i = 0; i < size_; ++i) {
            winner_times[size_ + i] = NextTime(i);
            winners[size_ + i] = static_cast<std::uint32_t>(i);
        }
        for (std::size_t node = size_ - 1; node > 0; --node) {
            const std::size_t left = 2 * node;
            const std::size_t best = winner_times[left + 1] < winner_times[left] ? left + 1 : left;
            winner_times[node] = winner_times[best];
            winners[node] = winners[best];
            times_[node] = winner_times[best ^ 1];
            leaves_[node] = winners[best ^ 1];
        }
        times_[0] = winner_times[1];
        leaves_[0] = winners[1];
    }
    void Replay(std::uint32_t leaf, std::int64_t time) {
        for (std::size_t node = (size_ + leaf) / 2; node > 0; node /= 2) {
            std::int64_t mask = -static_cast<std::int64_t>(times_[node] < time);
            benchmark::DoNotOptimize(mask);
            const std::int64_t time_change = (times_[node] ^ time) & mask;
            const std::uint32_t leaf_change =
                (leaves_[node] ^ leaf) & static_cast<std::uint32_t>(mask);
            times_[node] ^= time_change;
            time ^= time_change;
            leaves_[node] ^= leaf_change;
            leaf ^= leaf_change;
        }
        times_[0] = time;
        leaves_[0] = leaf;
    }

    PlainLists& lists_;
    std::vector<std::size_t> next_;
    std::size_t size_ = 2;
    std::vector<std::int64_t> times_;
    std::vector<std::uint32_t> leaves_;

public:
    std::vector<PlainEvent*> current;
};

std::int64_t Walk(IBusEventIterator& events) {
    std::int64_t sum = 0;
    events.Reset();
    while (events.Next() == S_OK) {
        sum += events.GetEvent()->GetTime();
    }
    return sum;
}

constexpr std::size_t kEvents = 1'000'000;

PlainLists ListsOf(const benchmark::State& state) {
    return MakeLists(static_cast<std::size_t>(state.range(0)), kEvents,
                     static_cast<Pattern>(state.range(1)));
}
void SetRate(benchmark::State& state, std::size_t events) {
    state.SetItemsProcessed(static_cast<std::int64_t>(events) * state.iterations());
}

void IterateTree(benchmark::State& state) {
    PlainLists lists = ListsOf(state);
    Merge merge(lists);
    for (auto _ : state) {
        benchmark::DoNotOptimize(merge.Run());
        benchmark::ClobberMemory();
    }
    SetRate(state, CountOf(lists));
}

void IterateCorv(benchmark::State& state) {
    PlainLists lists = ListsOf(state);
    const ComPtr<ISignal> bus = MakeBus(lists);
    ComPtr<IBusEventIterator> events;
    CreateBusEventIterator(bus.get(), events.Out());
    if (Walk(*events) != Merge(lists).Run()) {
        state.SkipWithError("not the same events");
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(Walk(*events));
    }
    SetRate(state, CountOf(lists));
}

// ---- the text of a vector at a time ----

constexpr std::size_t kBits = 64;

std::vector<std::int64_t> AskedTimes(const PlainLists& lists) {
    std::vector<std::int64_t> asked(1024);
    std::mt19937_64 random(5);
    for (auto& time : asked) {
        time = 1'000'000 + static_cast<std::int64_t>(
                               random() % static_cast<std::uint64_t>(lists[0].back().time));
    }
    return asked;
}

void TextBisections(benchmark::State& state) {
    PlainLists lists =
        MakeLists(kBits, kBits * static_cast<std::size_t>(state.range(0)), kOwnTimes);
    const auto asked = AskedTimes(lists);
    std::size_t next = 0;
    for (auto _ : state) {
        const std::int64_t time = asked[next++ % asked.size()];
        for (auto& list : lists) {
            const auto found = std::lower_bound(
                list.begin(), list.end(), time,
                [](const PlainEvent& event, std::int64_t t) { return event.time < t; });
            benchmark::DoNotOptimize(found);
        }
    }
}

void TextCorv(benchmark::State& state) {
    const PlainLists lists =
        MakeLists(kBits, kBits * static_cast<std::size_t>(state.range(0)), kOwnTimes);
    const ComPtr<ISignal> bus = MakeBus(lists);
    const auto asked = AskedTimes(lists);
    if (const char* const text = bus->GetValueTextAt(asked[0], FindAtOrBefore);
        text == nullptr || std::strlen(text) != kBits) {
        state.SkipWithError("no text");
    }
    std::size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(bus->GetValueTextAt(asked[next++ % asked.size()], FindAtOrBefore));
    }
}

void Patterns(benchmark::internal::Benchmark* bench) {
    bench->ArgNames({"leaves", "pattern"})
        ->ArgsProduct({{8, 16, 64, 1024}, {kOwnTimes, kClocked, kMixed}})
        ->Unit(benchmark::kMillisecond);
}
BENCHMARK(IterateTree)->Name("bus/iterate/plain")->Apply(Patterns);
BENCHMARK(IterateCorv)->Name("bus/iterate/corv")->Apply(Patterns);
BENCHMARK(TextBisections)
    ->Name("bus/text_at_64/plain")
    ->Arg(1024)
    ->Arg(4096)
    ->Arg(16'000)
    ->Arg(65'536);
BENCHMARK(TextCorv)->Name("bus/text_at_64/corv")->Arg(1024)->Arg(4096)->Arg(16'000)->Arg(65'536);

}  // namespace
