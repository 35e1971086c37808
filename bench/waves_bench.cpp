// Appending, searching, walking and committing, each beside the plainest form of the job on a
// std::vector of the same virtual records. The records are made and asked through virtual calls in
// both.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

#include "corv/corv.h"
#include "platform/address_range.h"

#if defined(__GLIBC__)
#include <malloc.h>
#include <unistd.h>
#endif

namespace {

// ---- the plain forms ----

template <class Value>
class PlainEvent final : public IWaveEvent {
public:
    PlainEvent(std::int64_t at, Value v, std::uint8_t f) : time(at), value(v), flags(f) {}
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
    Value value;
    std::uint8_t flags;
};

// The operations that are measured, with the signatures that the wave's have.
class PlainWaveBase {
public:
    virtual ~PlainWaveBase() = default;
    virtual HRESULT AddEvent(std::int64_t time, std::uint32_t stamp, const void* value,
                             std::uint32_t size) = 0;
    virtual HRESULT FindEvent(std::int64_t time, std::uint32_t mode, IWaveEvent** event) = 0;
    virtual HRESULT Next(std::uint32_t count, IWaveEvent** events, std::uint32_t* delivered) = 0;
    virtual void Clear() = 0;
};

template <class Value>
class PlainWave final : public PlainWaveBase {
public:
    HRESULT AddEvent(std::int64_t time, std::uint32_t, const void* value, std::uint32_t) override {
        Value bytes;
        std::memcpy(&bytes, value, sizeof bytes);
        events.push_back(PlainEvent<Value>(time, bytes, 0));
        return S_OK;
    }
    HRESULT FindEvent(std::int64_t time, std::uint32_t, IWaveEvent** event) override {
        const auto found =
            std::lower_bound(events.begin(), events.end(), time,
                             [](const PlainEvent<Value>& e, std::int64_t t) { return e.time < t; });
        if (found == events.end()) {
            return E_FAIL;
        }
        *event = &*found;
        return S_OK;
    }
    HRESULT Next(std::uint32_t count, IWaveEvent** out, std::uint32_t* delivered) override {
        std::uint32_t taken = 0;
        for (; taken < count && position < events.size(); ++taken) {
            out[taken] = &events[position++];
        }
        *delivered = taken;
        return taken > 0 ? S_OK : S_FALSE;
    }
    void Clear() override { events.clear(); }

    std::vector<PlainEvent<Value>> events;
    std::size_t position = 0;
};

// Both are made where the compiler can't see the class.
template <class Value>
[[gnu::noinline]] std::unique_ptr<PlainWaveBase> MakePlain() {
    return std::make_unique<PlainWave<Value>>();
}

struct Releaser {
    void operator()(IUnknown* object) const { object->Release(); }
};
using WavePointer = std::unique_ptr<ISignalWave, Releaser>;

template <class Value>
WavePointer MakeCorv() {
    ISignalWave* wave = nullptr;
    CreateSignalWave(sizeof(Value), &wave);
    return WavePointer(wave);
}

struct Plain {
    template <class Value>
    static auto Make() {
        return MakePlain<Value>();
    }
};
struct Corv {
    template <class Value>
    static auto Make() {
        return MakeCorv<Value>();
    }
};

// ---- appending ----

template <class Value, class Wave>
void Fill(Wave& wave, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) {
        const Value value = i & 3;
        wave.AddEvent(static_cast<std::int64_t>(i * 10), static_cast<std::uint32_t>(i), &value,
                      sizeof value);
    }
}

void SetRate(benchmark::State& state, std::size_t events) {
    state.SetItemsProcessed(static_cast<std::int64_t>(events) * state.iterations());
}

// A new wave each time. Memory that an earlier round gave back may serve again, in both forms.
template <class Form, class Value>
void Append(benchmark::State& state) {
    const auto n = static_cast<std::size_t>(state.range(0));
    for (auto _ : state) {
        auto wave = Form::template Make<Value>();
        Fill<Value>(*wave, n);
        benchmark::DoNotOptimize(wave.get());
    }
    SetRate(state, n);
}

void GiveMemoryBack() {
    corv::platform::AddressRange::ReleaseKept();
#if defined(__GLIBC__)
    malloc_trim(0);
#endif
}

// The same in a process that has no memory at hand: each page is new.
template <class Form, class Value>
void AppendCold(benchmark::State& state) {
    const auto n = static_cast<std::size_t>(state.range(0));
    for (auto _ : state) {
        state.PauseTiming();
        GiveMemoryBack();
        state.ResumeTiming();
        auto wave = Form::template Make<Value>();
        Fill<Value>(*wave, n);
        benchmark::DoNotOptimize(wave.get());
    }
    SetRate(state, n);
}

// The same wave, emptied and filled again.
template <class Form, class Value>
void AppendAgain(benchmark::State& state) {
    const auto n = static_cast<std::size_t>(state.range(0));
    auto wave = Form::template Make<Value>();
    Fill<Value>(*wave, n);
    for (auto _ : state) {
        wave->Clear();
        Fill<Value>(*wave, n);
        benchmark::DoNotOptimize(wave.get());
    }
    SetRate(state, n);
}

// Each event goes to another of 1,000 new waves.
template <class Form>
void AppendThousand(benchmark::State& state) {
    constexpr std::size_t kWaves = 1000;
    const auto n = static_cast<std::size_t>(state.range(0));
    std::vector<std::uint16_t> order(std::size_t{1} << 16);
    std::mt19937_64 random(7);
    for (auto& wave : order) {
        wave = static_cast<std::uint16_t>(random() % kWaves);
    }
    for (auto _ : state) {
        std::vector<decltype(Form::template Make<std::uint32_t>())> waves;
        for (std::size_t i = 0; i < kWaves; ++i) {
            waves.push_back(Form::template Make<std::uint32_t>());
        }
        for (std::size_t i = 0; i < n; ++i) {
            const std::uint32_t value = i & 3;
            waves[order[i & 0xffff]]->AddEvent(static_cast<std::int64_t>(i * 10),
                                               static_cast<std::uint32_t>(i), &value, sizeof value);
        }
    }
    SetRate(state, n);
}

// ---- memory ----

// The process's resident bytes; 0 where the system doesn't tell.
double ResidentBytes() {
    long pages = 0;
#if defined(__GLIBC__)
    if (std::FILE* const file = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(file, "%*s %ld", &pages) != 1) {
            pages = 0;
        }
        std::fclose(file);
    }
    pages *= sysconf(_SC_PAGESIZE);
#endif
    return static_cast<double>(pages);
}

// What n events in so many waves hold when they have grown together and been asked once: resident
// bytes per event, the wave objects included.
template <class Form>
void Resident(benchmark::State& state) {
    const auto n = static_cast<std::size_t>(state.range(0));
    const auto count = static_cast<std::size_t>(state.range(1));
    double bytes = 0;
    for (auto _ : state) {
        std::vector<decltype(Form::template Make<std::uint32_t>())> waves(count);
        GiveMemoryBack();
        const double before = ResidentBytes();
        for (auto& wave : waves) {
            wave = Form::template Make<std::uint32_t>();
        }
        for (std::size_t i = 0; i < n; ++i) {
            const std::uint32_t value = i & 3;
            waves[i % count]->AddEvent(static_cast<std::int64_t>(i), 0, &value, sizeof value);
        }
        IWaveEvent* event = nullptr;
        for (auto& wave : waves) {
            wave->FindEvent(5, FindAtOrAfter, &event);
        }
        GiveMemoryBack();  // free memory that the heap keeps is nobody's
        bytes = ResidentBytes() - before;
    }
    state.counters["bytes_per_event"] = bytes / static_cast<double>(n);
}

// ---- searching ----

// Times of n events: even steps, or bursts of 1,000 with long pauses between.
std::vector<std::int64_t> Times(std::size_t n, bool bursts) {
    std::vector<std::int64_t> times;
    std::mt19937_64 random(99);
    std::int64_t time = 0;
    for (std::size_t i = 0; i < n; ++i) {
        if (!bursts) {
            time += 10;
        } else {
            time += i % 1000 == 0 ? 1'000'000'000 : 1 + static_cast<std::int64_t>(random() % 16);
        }
        times.push_back(time);
    }
    return times;
}

template <class Form>
void Find(benchmark::State& state) {
    const std::vector<std::int64_t> times =
        Times(static_cast<std::size_t>(state.range(0)), state.range(1) != 0);
    auto wave = Form::template Make<std::uint32_t>();
    const std::uint32_t value = 1;
    for (const std::int64_t time : times) {
        wave->AddEvent(time, 0, &value, sizeof value);
    }
    std::vector<std::int64_t> asked(std::size_t{1} << 16);
    std::mt19937_64 random(5);
    for (auto& time : asked) {
        time = times[random() % times.size()] + static_cast<std::int64_t>(random() % 3) - 1;
    }
    std::size_t next = 0;
    for (auto _ : state) {
        for (int i = 0; i < 256; ++i) {
            IWaveEvent* event = nullptr;
            wave->FindEvent(asked[next++ & 0xffff], FindAtOrAfter, &event);
            benchmark::DoNotOptimize(event);
        }
    }
    SetRate(state, 256);
}

// ---- walking ----

template <class Walker>
std::uint64_t Walk(Walker& walker) {
    IWaveEvent* events[64];
    std::uint32_t delivered = 0;
    std::uint64_t sum = 0;
    while (walker.Next(64, events, &delivered) == S_OK) {
        for (std::uint32_t i = 0; i < delivered; ++i) {
            std::uint32_t value = 0;
            sum += static_cast<std::uint64_t>(events[i]->GetTime());
            events[i]->GetValue(&value, sizeof value);
            sum += value;
        }
    }
    return sum;
}

void WalkPlain(benchmark::State& state) {
    const auto n = static_cast<std::size_t>(state.range(0));
    const auto base = MakePlain<std::uint32_t>();
    Fill<std::uint32_t>(*base, n);
    auto& wave = static_cast<PlainWave<std::uint32_t>&>(*base);
    for (auto _ : state) {
        wave.position = 0;
        benchmark::DoNotOptimize(Walk(*base));
    }
    SetRate(state, n);
}

void WalkCorv(benchmark::State& state) {
    const auto n = static_cast<std::size_t>(state.range(0));
    const auto wave = MakeCorv<std::uint32_t>();
    Fill<std::uint32_t>(*wave, n);
    IWaveEventEnumerator* made = nullptr;
    wave->CreateEnumerator(&made);
    const std::unique_ptr<IWaveEventEnumerator, Releaser> events(made);
    for (auto _ : state) {
        events->Reset();
        benchmark::DoNotOptimize(Walk(*events));
    }
    SetRate(state, n);
}

// ---- committing ----

// n pending events in front of n; the time is that of the commit alone.
void CommitPlain(benchmark::State& state) {
    const auto n = static_cast<std::size_t>(state.range(0));
    for (auto _ : state) {
        state.PauseTiming();
        PlainWave<std::uint32_t> wave;
        PlainWave<std::uint32_t> pending;
        Fill<std::uint32_t>(wave, n);
        Fill<std::uint32_t>(pending, n);
        state.ResumeTiming();
        wave.events.insert(wave.events.begin(), pending.events.rbegin(), pending.events.rend());
        pending.events = {};
        benchmark::DoNotOptimize(wave.events.data());
        state.PauseTiming();
        wave.events = {};
        state.ResumeTiming();
    }
    SetRate(state, 2 * n);
}

void CommitCorv(benchmark::State& state) {
    const auto n = static_cast<std::size_t>(state.range(0));
    for (auto _ : state) {
        state.PauseTiming();
        auto wave = MakeCorv<std::uint32_t>();
        Fill<std::uint32_t>(*wave, n);
        for (std::size_t i = 0; i < n; ++i) {
            const std::uint32_t value = i & 3;
            wave->AddPendingEvent(-static_cast<std::int64_t>(i * 10), &value, sizeof value);
        }
        state.ResumeTiming();
        wave->CommitPendingEvents();
        state.PauseTiming();
        wave.reset();
        state.ResumeTiming();
    }
    SetRate(state, 2 * n);
}

#define CORV_BENCH_BOTH(function, name, ...)                                        \
    BENCHMARK(function<Plain __VA_ARGS__>)->Name("wave/" name "/plain")->CORV_ARGS; \
    BENCHMARK(function<Corv __VA_ARGS__>)->Name("wave/" name "/corv")->CORV_ARGS

using V4 = std::uint32_t;
using V8 = std::uint64_t;

#define CORV_ARGS Arg(1'000)->Arg(100'000)->Arg(1'000'000)->Arg(10'000'000)
CORV_BENCH_BOTH(Append, "append", , V4);
CORV_BENCH_BOTH(AppendCold, "append_cold", , V4);
CORV_BENCH_BOTH(AppendAgain, "append_again", , V4);
#undef CORV_ARGS
#define CORV_ARGS Arg(1'000'000)
CORV_BENCH_BOTH(Append, "append8", , V8);
#undef CORV_ARGS
#define CORV_ARGS Arg(1'000'000)->Arg(3'000'000)->Arg(10'000'000)
CORV_BENCH_BOTH(AppendThousand, "append_1000_waves");
#undef CORV_ARGS
#define CORV_ARGS                  \
    Args({1'000'000, 1})           \
        ->Args({10'000'000, 1})    \
        ->Args({700'000, 1000})    \
        ->Args({1'000'000, 1000})  \
        ->Args({10'000'000, 1000}) \
        ->Iterations(1)
CORV_BENCH_BOTH(Resident, "resident");
#undef CORV_ARGS
#define CORV_ARGS \
    ArgNames({"n", "bursts"})->ArgsProduct({{100, 1'000, 65'536, 1'000'000, 10'000'000}, {0, 1}})
CORV_BENCH_BOTH(Find, "find");

BENCHMARK(WalkPlain)->Name("wave/walk_64/plain")->Arg(1'000'000);
BENCHMARK(WalkCorv)->Name("wave/walk_64/corv")->Arg(1'000'000);
BENCHMARK(CommitPlain)->Name("wave/commit/plain")->Arg(1'000'000);
BENCHMARK(CommitCorv)->Name("wave/commit/corv")->Arg(1'000'000);

}  // namespace
