// Reading GHW, beside the plainest reading of the same bytes: every value is looked at, values and
// times are summed up, nothing is checked or kept.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "stremo/block_store.h"
#include "stremo/ghw/recording.h"

namespace {

using corv::platform::Bytes;

std::string Unsigned(std::uint64_t value) {
    std::string bytes;
    for (; value >= 0x80; value >>= 7) {
        bytes += static_cast<char>(value | 0x80);
    }
    return bytes + static_cast<char>(value);
}
std::string Signed(std::int64_t value) {
    std::string bytes;
    for (; value < -64 || value > 63; value >>= 7) {
        bytes += static_cast<char>(value | 0x80);
    }
    return bytes + static_cast<char>(value & 0x7F);
}
template <class T>
std::string Fixed(T value) {
    return {reinterpret_cast<const char*>(&value), sizeof value};
}

// A file as a digital simulation writes it: a clock, and 1,000 signals in 20 units: control bits,
// buses of 8 to 32 bits, a counter of type integer in each unit. At each rising edge one in forty
// changes. Some 2 bytes for each change. The same bytes for the same size.
class GhwInput {
public:
    std::string Make(std::size_t bytes) {
        Declare();
        file_ += std::string("CYC\0", 4) + Fixed(std::int64_t{0}) + '\0';
        while (file_.size() < bytes) {
            file_ += Signed(2'500'000);
            Step();
        }
        file_ += std::string(
            "\x7F"
            "ECY\0DIR\0",
            9);
        return std::move(file_);
    }
    std::size_t changes() const { return changes_; }

private:
    // The types, by their number.
    enum : unsigned { kLogic = 1, kIndex, kInteger, kVector, kBus8, kBus16, kBus24, kBus32 };

    struct Signal {
        std::size_t first;  // net
        unsigned width;     // 0 for an integer
        std::uint64_t value = 0;
    };

    std::uint64_t Name(const std::string& name) {
        names_ += name + '\0';
        characters_ += name.size();
        return ++name_count_;
    }
    std::string NameOf(const std::string& name) { return Unsigned(Name(name)); }

    std::string Types() {
        std::string types = '\x17' + NameOf("std_ulogic") + '\x09';
        for (const char letter : std::string("UX01ZWLH-")) {
            types += NameOf(std::string{'\'', letter, '\''});
        }
        types += '\x19' + NameOf("index") + '\x19' + NameOf("integer");
        types += '\x1F' + NameOf("std_logic_vector") + std::string("\1\1\2", 3);
        for (int width = 8; width <= 32; width += 8) {
            types += std::string("\x23\0\4\x99", 4) + Signed(width - 1) + '\0';
        }
        return types;
    }

    void Add(std::string& hierarchy, const std::string& name, unsigned type, unsigned width) {
        hierarchy += '\x10' + NameOf(name) + static_cast<char>(type);
        signals_.push_back({nets_, width});
        for (unsigned i = 0; i < std::max(width, 1U); ++i) {
            hierarchy += Unsigned(++nets_);
            start_ += width == 0 ? '\0' : '\2';
        }
    }

    std::string Hierarchy() {
        std::string hierarchy = '\6' + NameOf("bench");
        Add(hierarchy, "clk", kLogic, 1);
        for (int unit = 0; unit < 20; ++unit) {
            hierarchy += '\6' + NameOf("unit" + std::to_string(unit));
            Add(hierarchy, "count", kInteger, 0);
            for (unsigned i = 1; i < 50; ++i) {
                const bool bus = i % 5 == 4;
                const unsigned width = bus ? 8 * (1 + i / 5 % 4) : 1;
                Add(hierarchy, (bus ? "bus" : "bit") + std::to_string(i),
                    bus ? kBus8 + width / 8 - 1 : unsigned{kLogic}, width);
            }
            hierarchy += '\x0F';
        }
        return hierarchy + std::string("\x0F\0", 2);
    }

    void Declare() {
        const std::string types = Types();
        const std::string hierarchy = Hierarchy();
        file_ = std::string("GHDLwave\n\x10\0\1\1\4\1\0", 16);
        file_ += std::string("STR\0\0\0\0\0", 8) + Fixed(static_cast<std::uint32_t>(name_count_)) +
                 Fixed(static_cast<std::uint32_t>(characters_)) + names_ + std::string("EOS\0", 4);
        file_ += std::string("TYP\0\0\0\0\0", 8) + Fixed(std::uint32_t{kBus32}) + types + '\0';
        file_ += std::string("WKT\0\0\0\0\0\3\1\0", 11);
        file_ += std::string("HIE\0\0\0\0\0", 8) + Fixed(std::uint64_t{0}) +
                 Fixed(static_cast<std::uint32_t>(nets_)) + hierarchy + std::string("EOH\0", 4);
        file_ += std::string("SNP\0\0\0\0\0", 8) + Fixed(std::int64_t{0}) + start_ +
                 std::string("ESN\0", 4);
    }

    void Change(Signal& signal) {
        const std::uint64_t mask = (std::uint64_t{1} << signal.width) - 1;
        const std::uint64_t next = signal.width > 1 ? random_() & mask : signal.value + 1;
        if (signal.width == 0) {
            Put(signal.first, Signed(static_cast<std::int64_t>(next)));
        }
        for (unsigned i = 0; i < signal.width; ++i) {
            const unsigned bit = signal.width - 1 - i;
            if (((next ^ signal.value) >> bit & 1) != 0) {
                Put(signal.first + i, std::string(1, (next >> bit & 1) != 0 ? '\3' : '\2'));
            }
        }
        signal.value = next;
    }
    void Put(std::size_t net, const std::string& value) {
        file_ += Unsigned(net + 1 - last_) + value;
        last_ = net + 1;
        ++changes_;
    }

    // The clock toggles; at its rising edge others change.
    void Step() {
        last_ = 0;
        Change(signals_[0]);
        if ((signals_[0].value & 1) != 0) {
            for (std::size_t i = 1 + random_() % 40; i < signals_.size(); i += 1 + random_() % 79) {
                Change(signals_[i]);
            }
        }
        file_ += '\0';
    }

    std::mt19937_64 random_{7};
    std::string file_, names_, start_;
    std::size_t name_count_ = 0;
    std::size_t characters_ = 0;
    std::size_t nets_ = 0;
    std::size_t last_ = 0;
    std::size_t changes_ = 0;
    std::vector<Signal> signals_;
};

const std::string& File() {
    static const std::string file = GhwInput().Make(20'000'000);
    return file;
}

class HeldFile final : public corv::platform::FileContent {
public:
    Bytes bytes() const noexcept override {
        return {reinterpret_cast<const unsigned char*>(File().data()), File().size()};
    }
};

void CountBytes(benchmark::State& state) {
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(File().size()));
}

// ---- the baseline ----

std::uint64_t PlainNumber(const unsigned char*& at) {
    std::uint64_t value = *at & 0x7F;
    for (unsigned shift = 7; *at++ >= 0x80; shift += 7) {
        value |= std::uint64_t{*at & 0x7FU} << shift;
    }
    return value;
}

// For bytes that are known to be well-formed.
std::uint64_t PlainSum(const std::string& file, const std::vector<bool>& is_integer) {
    static std::uint64_t values[65'536];
    const std::size_t start = file.find(std::string("CYC\0", 4)) + 12;
    const auto* at = reinterpret_cast<const unsigned char*>(file.data()) + start;
    std::uint64_t sum = 0;
    for (std::uint64_t time = 0;; time += PlainNumber(at)) {
        std::uint64_t net = 0;
        while (const std::uint64_t distance = PlainNumber(at)) {
            net += distance;
            const std::uint64_t value = is_integer[net] ? PlainNumber(at) : *at++;
            sum += time ^ values[net] ^ value;
            values[net] = value;
        }
        if (*at == 0x7F) {
            return sum;
        }
    }
}

// The nets of the counters: the first of each unit.
std::vector<bool> Integers() {
    std::vector<bool> integers(65'536);
    std::size_t net = 1;
    for (int unit = 0; unit < 20; ++unit) {
        integers[++net] = true;
        for (unsigned i = 1; i < 50; ++i) {
            net += i % 5 == 4 ? 8 * (1 + i / 5 % 4) : 1;
        }
    }
    return integers;
}

void GhwReadPlain(benchmark::State& state) {
    File();  // made before the time counts
    const std::vector<bool> integers = Integers();
    for (auto _ : state) {
        benchmark::DoNotOptimize(PlainSum(File(), integers));
    }
    CountBytes(state);
}
BENCHMARK(GhwReadPlain)->Name("ghw/read/plain")->Unit(benchmark::kMillisecond);

// ---- reading ----

// Lists the signals; the last time is found on the way.
void GhwOpen(benchmark::State& state) {
    File();
    for (auto _ : state) {
        benchmark::DoNotOptimize(corv::recording::OpenGhw("bench", std::make_unique<HeldFile>()));
    }
    CountBytes(state);
}
BENCHMARK(GhwOpen)->Name("ghw/open/corv")->Unit(benchmark::kMillisecond);

void ReadLeaves(benchmark::State& state, const std::vector<std::uint32_t>& leaves) {
    File();  // made before the time counts
    std::size_t bytes = 0;
    std::uint64_t events = 1;
    for (auto _ : state) {
        const auto recording = corv::recording::OpenGhw("bench", std::make_unique<HeldFile>());
        const auto blocks = recording->OpenBlocks(leaves);
        bytes = static_cast<corv::recording::MemoryBlocks&>(*blocks).bytes();
        events = blocks->EventCount();
    }
    CountBytes(state);
    state.counters["events"] = static_cast<double>(events);
    state.counters["bytes/event"] = static_cast<double>(bytes) / static_cast<double>(events);
}

void GhwReadAll(benchmark::State& state) {
    ReadLeaves(state, {});
}
BENCHMARK(GhwReadAll)->Name("ghw/read/corv")->Unit(benchmark::kMillisecond);

void GhwReadOneSignal(benchmark::State& state) {
    ReadLeaves(state, {3});
}
BENCHMARK(GhwReadOneSignal)->Name("ghw/read_one_signal/corv")->Unit(benchmark::kMillisecond);

}  // namespace
