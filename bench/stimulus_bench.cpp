// Reading, walking and writing formulas, each beside the plainest hand-written form of the job.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "corv/corv.h"

namespace {

// "0 0, 1 10, 0 20, …"; every `absolute_every`-th element at an absolute time; `vectors` makes the
// values 32-bit strings in quotes.
std::string FormulaText(std::size_t n, std::size_t absolute_every, bool vectors = false) {
    std::string text;
    for (std::size_t i = 0; i < n; ++i) {
        text += i == 0 ? "" : ", ";
        if (vectors) {
            text += '"';
            for (std::size_t bit = 0; bit < 32; ++bit) {
                text += (i >> (bit % 16)) & 1 ? '1' : '0';
            }
            text += '"';
        } else {
            text += i % 2 == 0 ? '0' : '1';
        }
        text += absolute_every != 0 && i % absolute_every == absolute_every - 1 ? " @" : " ";
        text += std::to_string(i * 10);
    }
    return text;
}

// ---- reading ----

// What any reader has to store for an element: its own text, its time, its flags.
struct PlainElement {
    virtual ~PlainElement() = default;
    std::string value;
    std::int64_t time = 0;
    std::uint32_t unit = 1;
    std::uint32_t target = 1;
    int absolute = 0;
    bool with_time = true;
};

bool IsBlank(char c) {
    return c == ' ' || c == ',' || c == '\n' || c == '\t';
}

std::vector<std::unique_ptr<PlainElement>> PlainRead(std::string_view text) {
    std::vector<std::unique_ptr<PlainElement>> out;
    std::size_t at = 0;
    const std::size_t end = text.size();
    while (at < end) {
        while (at < end && IsBlank(text[at])) {
            ++at;
        }
        const std::size_t value = at;
        if (at < end && text[at] == '"') {
            at = std::min(text.find('"', at + 1), end - 1) + 1;
        }
        while (at < end && !IsBlank(text[at])) {
            ++at;
        }
        auto element = std::make_unique<PlainElement>();
        element->value = text.substr(value, at - value);
        while (at < end && text[at] == ' ') {
            ++at;
        }
        if (at < end && text[at] == '@') {
            element->absolute = 1;
            ++at;
        }
        at = static_cast<std::size_t>(
            std::from_chars(text.data() + at, text.data() + end, element->time).ptr - text.data());
        out.push_back(std::move(element));
    }
    return out;
}

void SetRates(benchmark::State& state, std::size_t items, std::size_t bytes) {
    state.SetItemsProcessed(static_cast<std::int64_t>(items) * state.iterations());
    if (bytes != 0) {
        state.SetBytesProcessed(static_cast<std::int64_t>(bytes) * state.iterations());
    }
}

void ReadBaseline(benchmark::State& state) {
    const auto n = static_cast<std::size_t>(state.range(0));
    const std::string text = FormulaText(n, 0, state.range(1) != 0);
    for (auto _ : state) {
        benchmark::DoNotOptimize(PlainRead(text).data());
    }
    SetRates(state, n, text.size());
}

void ReadCorv(benchmark::State& state) {
    const auto n = static_cast<std::size_t>(state.range(0));
    const std::string text = FormulaText(n, 0, state.range(1) != 0);
    for (auto _ : state) {
        CStimulus stimulus;
        benchmark::DoNotOptimize(stimulus.Create(text.c_str(), 0));
    }
    SetRates(state, n, text.size());
}

// ---- writing ----

void WriteBaseline(benchmark::State& state) {
    const auto n = static_cast<std::size_t>(state.range(0));
    const auto elements = PlainRead(FormulaText(n, 0, state.range(1) != 0));
    std::string out;
    for (auto _ : state) {
        out.clear();
        for (const auto& element : elements) {
            out += element->value;
            out += ' ';
            char digits[24];
            out.append(digits, std::to_chars(digits, digits + 24, element->time).ptr);
            out += ", ";
        }
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    SetRates(state, n, out.size());
}

void WriteCorv(benchmark::State& state) {
    const auto n = static_cast<std::size_t>(state.range(0));
    CStimulus stimulus;
    stimulus.Create(FormulaText(n, 0, state.range(1) != 0).c_str(), 0);
    CString out;
    for (auto _ : state) {
        stimulus.GenerateFormula(out);
        benchmark::DoNotOptimize(static_cast<const char*>(out));
    }
    SetRates(state, n, static_cast<std::size_t>(out.GetLength()));
}

// ---- walking ----

// The elements of a formula as two sorted lists of times and values, bisected.
class PlainIndex {
public:
    explicit PlainIndex(const std::string& formula, std::int64_t period) : period_(period) {
        for (auto& element : PlainRead(formula)) {
            List& list = element->absolute != 0 ? absolute_ : relative_;
            list.times.push_back(element->time);
            list.values.push_back(element->value);
        }
    }

    std::int64_t Next(std::int64_t time) const {
        std::int64_t from = std::max<std::int64_t>(time + 1, 0);
        const std::int64_t absolute = absolute_.Next(from);
        std::int64_t base = 0;
        if (period_ != 0 && from >= period_) {
            base = from - from % period_;
            from -= base;
        }
        std::int64_t relative = relative_.Next(from);
        if (relative < 0 && period_ != 0) {
            relative = relative_.times.front() + period_;
        }
        relative += relative < 0 ? 0 : base;
        return absolute >= 0 && (relative < 0 || absolute < relative) ? absolute : relative;
    }

    bool Value(std::int64_t time, std::string& value) const {
        const std::size_t absolute = absolute_.CountUpTo(time);
        const std::int64_t in_pattern = period_ != 0 ? time % period_ : time;
        const std::size_t relative = relative_.CountUpTo(in_pattern);
        if (absolute == 0 && relative == 0) {
            return false;
        }
        const bool take_absolute =
            absolute != 0 &&
            (relative == 0 ||
             absolute_.times[absolute - 1] >= time - in_pattern + relative_.times[relative - 1]);
        value = take_absolute ? absolute_.values[absolute - 1] : relative_.values[relative - 1];
        return true;
    }

private:
    struct List {
        std::int64_t Next(std::int64_t time) const {
            const auto at = std::lower_bound(times.begin(), times.end(), time);
            return at == times.end() ? -1 : *at;
        }
        std::size_t CountUpTo(std::int64_t time) const {
            return static_cast<std::size_t>(std::upper_bound(times.begin(), times.end(), time) -
                                            times.begin());
        }
        std::vector<std::int64_t> times;
        std::vector<std::string> values;
    };

    std::int64_t period_;
    List absolute_;
    List relative_;
};

constexpr std::size_t kWalkedEvents = 100'000;

void WalkBaseline(benchmark::State& state) {
    const auto n = static_cast<std::size_t>(state.range(0));
    const PlainIndex index(FormulaText(n, static_cast<std::size_t>(state.range(1))),
                           static_cast<std::int64_t>(n) * 10);
    for (auto _ : state) {
        std::string value;
        std::int64_t time = -1;
        for (std::size_t i = 0; i < kWalkedEvents; ++i) {
            time = index.Next(time);
            index.Value(time, value);
            benchmark::DoNotOptimize(value.data());
        }
    }
    SetRates(state, kWalkedEvents, 0);
}

void WalkCorv(benchmark::State& state) {
    const auto n = static_cast<std::size_t>(state.range(0));
    const std::string formula =
        FormulaText(n, static_cast<std::size_t>(state.range(1))) + " -r " + std::to_string(n * 10);
    CStimulus stimulus;
    stimulus.Create(formula.c_str(), 0);
    for (auto _ : state) {
        CString value;
        std::int64_t time = -1;
        for (std::size_t i = 0; i < kWalkedEvents; ++i) {
            time = stimulus.GetNextEventTime(time);
            stimulus.GetValue(time, value);
            benchmark::DoNotOptimize(static_cast<const char*>(value));
        }
    }
    SetRates(state, kWalkedEvents, 0);
}

// From the text to the last event, index building included.
void ReadAndWalkCorv(benchmark::State& state) {
    const auto n = static_cast<std::size_t>(state.range(0));
    const std::string formula = FormulaText(n, static_cast<std::size_t>(state.range(1)));
    for (auto _ : state) {
        CStimulus stimulus;
        stimulus.Create(formula.c_str(), 0);
        CString value;
        for (std::int64_t t = stimulus.GetNextEventTime(-1); t >= 0;
             t = stimulus.GetNextEventTime(t)) {
            stimulus.GetValue(t, value);
        }
    }
    SetRates(state, n, 0);
}

void ReadSizes(benchmark::internal::Benchmark* bench) {
    bench->ArgNames({"n", "vectors"})
        ->Args({10'000, 0})
        ->Args({100'000, 0})
        ->Args({100'000, 1})
        ->Unit(benchmark::kMillisecond);
}

void WalkSizes(benchmark::internal::Benchmark* bench) {
    bench->ArgNames({"n", "absolute_every"})
        ->ArgsProduct({{4, 100, 100'000}, {0, 4}})
        ->Unit(benchmark::kMillisecond);
}

BENCHMARK(ReadBaseline)->Name("formula/read/plain")->Apply(ReadSizes);
BENCHMARK(ReadCorv)->Name("formula/read/corv")->Apply(ReadSizes);
BENCHMARK(WriteBaseline)->Name("formula/write/plain")->Apply(ReadSizes);
BENCHMARK(WriteCorv)->Name("formula/write/corv")->Apply(ReadSizes);
BENCHMARK(WalkBaseline)->Name("formula/walk/plain")->Apply(WalkSizes);
BENCHMARK(WalkCorv)->Name("formula/walk/corv")->Apply(WalkSizes);
BENCHMARK(ReadAndWalkCorv)
    ->Name("formula/read_and_walk/corv")
    ->ArgNames({"n", "absolute_every"})
    ->Args({100'000, 0})
    ->Args({100'000, 4})
    ->Unit(benchmark::kMillisecond);

}  // namespace
