// Converting the compact notation, beside a loop that does nothing but read and write its items.

#include <benchmark/benchmark.h>

#include <charconv>
#include <string>

#include "corv/corv.h"
#include "stimulus/vesk_formula.h"

namespace {

std::string NotationText(std::size_t n) {
    std::string text;
    for (std::size_t i = 0; i < n; ++i) {
        text += i % 2 == 0 ? "010NS" : "110NS";
    }
    return text;
}

void NotationBaseline(benchmark::State& state) {
    const auto n = static_cast<std::size_t>(state.range(0));
    const std::string text = NotationText(n);
    constexpr const char* kUnits[] = {"ps", "ns", "us", "ms", "sec"};
    std::string out;
    for (auto _ : state) {
        out.clear();
        std::int64_t now = 0;
        for (const char* at = text.data(); *at != '\0';) {
            out += *at++;
            std::int64_t duration = 0;
            at = std::from_chars(at, text.data() + text.size(), duration).ptr + 2;
            std::int64_t time = now;
            std::size_t unit = 0;
            for (; time != 0 && unit < 4 && time % 1000 == 0; ++unit) {
                time /= 1000;
            }
            char digits[24];
            out += ' ';
            out.append(digits, std::to_chars(digits, digits + 24, time).ptr);
            out += kUnits[unit];
            out += ',';
            now += duration * 1000;
        }
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(n) * state.iterations());
}

void NotationCorv(benchmark::State& state) {
    const auto n = static_cast<std::size_t>(state.range(0));
    const std::string text = NotationText(n);
    CString out;
    for (auto _ : state) {
        CVeskFormula formula;
        formula.Parse(text);
        formula.Convert(out);
        benchmark::DoNotOptimize(static_cast<const char*>(out));
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(n) * state.iterations());
}

BENCHMARK(NotationBaseline)
    ->Name("notation/convert/plain")
    ->Arg(10'000)
    ->Arg(100'000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(NotationCorv)
    ->Name("notation/convert/corv")
    ->Arg(10'000)
    ->Arg(100'000)
    ->Unit(benchmark::kMillisecond);

}  // namespace
