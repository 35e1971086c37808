// Counters asked wire by wire, and formulas cut into one per wire, each beside plain numbers.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "corv/corv.h"

namespace {

constexpr int kWires = 64;
constexpr std::int64_t kPeriod = 10;
constexpr int kPeriods = 1000;

std::string CounterText(int type) {
    return "\\counter\\TYPE\\" + std::to_string(type) +
           "\\DIR\\1\\RADIX\\10\\START\\0\\INC\\1\\PERIOD\\10\\REV\\0";
}

// A counter as numbers: what a wire's two questions need at the least.
class PlainCounter {
public:
    virtual ~PlainCounter() = default;
    virtual std::int64_t Next(int wire, std::int64_t time) {
        (void)wire;
        if (time >= end_) {
            value_ = next_++;
            end_ += kPeriod;
        }
        return end_;
    }
    virtual bool Value(int wire, std::int64_t time, std::string& out) {
        const std::uint64_t shown = Shown(time < end_ ? value_ : next_);
        out.assign(1, (shown >> (kWires - 1 - wire)) & 1 ? '1' : '0');
        return true;
    }

protected:
    virtual std::uint64_t Shown(std::uint64_t value) const { return value; }

private:
    std::uint64_t value_ = 0;
    std::uint64_t next_ = 0;
    std::int64_t end_ = 0;
};

class PlainGray final : public PlainCounter {
    std::uint64_t Shown(std::uint64_t value) const override { return value ^ (value >> 1); }
};

void CounterBaseline(benchmark::State& state) {
    for (auto _ : state) {
        const std::unique_ptr<PlainCounter> counter =
            state.range(0) == 2 ? std::make_unique<PlainGray>() : std::make_unique<PlainCounter>();
        std::string value;
        std::int64_t time = 0;
        for (int period = 0; period < kPeriods; ++period) {
            std::int64_t next = 0;
            for (int wire = 0; wire < kWires; ++wire) {
                next = counter->Next(wire, time);
                counter->Value(wire, next, value);
                benchmark::DoNotOptimize(value.data());
            }
            time = next;
        }
    }
    state.SetItemsProcessed(state.iterations() * kPeriods);
}

void CounterCorv(benchmark::State& state) {
    const std::string formula = CounterText(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        corv::ResetCounters();
        CStringArray texts;
        CFormulaParser().Run(formula.c_str(), texts, kWires, 1);
        std::vector<std::unique_ptr<CStimulus>> wires;
        for (int wire = 0; wire < kWires; ++wire) {
            wires.push_back(std::make_unique<CStimulus>());
            wires.back()->Create(texts[wire], 0);
        }
        CString value;
        std::int64_t time = 0;
        for (int period = 0; period < kPeriods; ++period) {
            std::int64_t next = 0;
            for (const auto& wire : wires) {
                next = wire->GetNextEventTime(time);
                wire->GetValue(next, value);
                benchmark::DoNotOptimize(static_cast<const char*>(value));
            }
            time = next;
        }
    }
    state.SetItemsProcessed(state.iterations() * kPeriods);
}

// The road through text: each period written, cut into wires and read again.
void CounterThroughText(benchmark::State& state) {
    constexpr int kTextPeriods = 20;
    CCounterState counter;
    counter.Init(CounterText(static_cast<int>(state.range(0))).c_str(), kWires, 1);
    counter.NoteStartTime(0);
    for (auto _ : state) {
        for (int period = 0; period < kTextPeriods; ++period) {
            CString text;
            counter.BuildSegment(text);
            CStringArray texts;
            CFormulaParser().Run(text, texts, kWires, 1);
            for (int wire = 0; wire < kWires; ++wire) {
                CStimulus stimulus;
                stimulus.Create(texts[wire], 0);
                benchmark::DoNotOptimize(stimulus.GetNextEventTime(-1));
            }
        }
    }
    state.SetItemsProcessed(state.iterations() * kTextPeriods);
}

std::string VectorFormula(std::size_t elements) {
    std::string text;
    for (std::size_t i = 0; i < elements; ++i) {
        text += i == 0 ? "\"" : ", \"";
        for (std::size_t bit = 0; bit < kWires; ++bit) {
            text += "01XZ"[(i * 7 + bit * 3) % 4];
        }
        text += "\" " + std::to_string(i * 10);
    }
    return text;
}

// One pass that deals the characters of every value out to the wires.
void SplitBaseline(benchmark::State& state) {
    const auto n = static_cast<std::size_t>(state.range(0));
    const std::string text = VectorFormula(n);
    for (auto _ : state) {
        std::vector<std::string> wires(kWires);
        for (std::size_t at = 0; at < text.size();) {
            const std::size_t value = at + 1;
            const std::size_t time = value + kWires + 1;
            const std::size_t end = std::min(text.find(',', time), text.size());
            for (std::size_t wire = 0; wire < kWires; ++wire) {
                wires[wire] += '\'';
                wires[wire] += text[value + wire];
                wires[wire] += '\'';
                wires[wire].append(text, time, end - time);
                wires[wire] += ',';
            }
            at = end + 2;
        }
        benchmark::DoNotOptimize(wires.data());
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(n) * kWires);
}

void SplitCorv(benchmark::State& state) {
    const auto n = static_cast<std::size_t>(state.range(0));
    const std::string text = VectorFormula(n);
    for (auto _ : state) {
        CStringArray wires;
        benchmark::DoNotOptimize(CFormulaParser().Run(text.c_str(), wires, kWires, 1));
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(n) * kWires);
}

BENCHMARK(CounterBaseline)->Name("counter/period/plain")->ArgName("type")->Arg(1)->Arg(2);
BENCHMARK(CounterCorv)->Name("counter/period/corv")->ArgName("type")->Arg(1)->Arg(2);
BENCHMARK(CounterThroughText)->Name("counter/period_through_text/corv")->ArgName("type")->Arg(1);
BENCHMARK(SplitBaseline)
    ->Name("formula/split/plain")
    ->Arg(1'000)
    ->Arg(10'000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(SplitCorv)
    ->Name("formula/split/corv")
    ->Arg(1'000)
    ->Arg(10'000)
    ->Unit(benchmark::kMillisecond);

}  // namespace
