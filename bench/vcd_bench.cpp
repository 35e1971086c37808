// Reading and writing VCD, beside the plainest reading of the same text: every word is looked at,
// codes found and values summed up, nothing kept.

#include "stremo/vcd/writer.h"

#include <benchmark/benchmark.h>

#include <array>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "stremo/block_store.h"
#include "stremo/recording_reader.h"
#include "stremo/vcd/recording.h"
#include "vcd_input.h"

namespace {

using corv::platform::Bytes;

const std::string& Text() {
    static const std::string text = corv::bench::VcdInput().Make(20'000'000);
    return text;
}

class HeldText final : public corv::platform::FileContent {
public:
    Bytes bytes() const noexcept override {
        return {reinterpret_cast<const unsigned char*>(Text().data()), Text().size()};
    }
};

void CountBytes(benchmark::State& state) {
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(Text().size()));
}

// ---- the baseline ----

// For texts that are known to be well-formed, with codes of up to two characters.
std::uint64_t PlainSum(const std::string& text) {
    static std::array<std::uint64_t, std::size_t{256} * 256> values;
    const char* at = text.data() + text.find("$enddefinitions $end") + 20;
    const char* const end = text.data() + text.size();
    std::uint64_t time = 0;
    std::uint64_t sum = 0;
    while (at != end) {
        const char first = *at++;
        std::uint64_t value = 0;
        if (first == '#') {
            for (time = 0; *at > ' '; ++at) {
                time = time * 10 + static_cast<std::uint64_t>(*at - '0');
            }
            continue;
        }
        if (first == 'b') {
            for (; *at > ' '; ++at) {
                value = value * 2 + (static_cast<unsigned char>(*at) & 1U);
            }
            ++at;
        } else if (first > ' ') {
            value = static_cast<unsigned char>(first);
        } else {
            continue;
        }
        std::size_t code = 0;
        for (; *at > ' '; ++at) {
            code = code * 256 + static_cast<unsigned char>(*at);
        }
        std::uint64_t& held = values[code & 0xFFFF];
        sum += time ^ held ^ value;
        held = value;
    }
    return sum;
}

void VcdReadPlain(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(PlainSum(Text()));
    }
    CountBytes(state);
}
BENCHMARK(VcdReadPlain)->Name("vcd/read/plain")->Unit(benchmark::kMillisecond);

// ---- reading and writing ----

void ReadLeaves(benchmark::State& state, std::vector<std::uint32_t> leaves) {
    std::size_t bytes = 0;
    std::uint64_t events = 1;
    for (auto _ : state) {
        const auto recording = corv::recording::OpenVcd("bench", std::make_unique<HeldText>());
        const auto blocks = recording->OpenBlocks(leaves);
        bytes = static_cast<corv::recording::MemoryBlocks&>(*blocks).bytes();
        events = blocks->EventCount();
    }
    CountBytes(state);
    state.counters["bytes/event"] = static_cast<double>(bytes) / static_cast<double>(events);
}

void VcdReadAll(benchmark::State& state) {
    ReadLeaves(state, {});
}
BENCHMARK(VcdReadAll)->Name("vcd/read/corv")->Unit(benchmark::kMillisecond);

void VcdReadOneSignal(benchmark::State& state) {
    ReadLeaves(state, {3});
}
BENCHMARK(VcdReadOneSignal)->Name("vcd/read_one_signal/corv")->Unit(benchmark::kMillisecond);

class NoFile final : public corv::platform::Files {
public:
    Opened<corv::platform::FileContent> Open(const std::string&) override { return {}; }
    Opened<corv::platform::FileOutput> Create(const std::string&) override {
        return {std::make_unique<Output>(), nullptr};
    }

private:
    class Output final : public corv::platform::FileOutput {
    public:
        const char* Append(Bytes) noexcept override { return nullptr; }
        const char* Close() noexcept override { return nullptr; }
    };
};

void VcdWrite(benchmark::State& state) {
    const auto reader = corv::recording::MakeReader(
        corv::recording::OpenVcd("bench", std::make_unique<HeldText>()));
    NoFile files;
    for (auto _ : state) {
        corv::vcd::WriteVcd(*reader, files, "out", {});
    }
    CountBytes(state);
}
BENCHMARK(VcdWrite)->Name("vcd/write/corv")->Unit(benchmark::kMillisecond);

}  // namespace
