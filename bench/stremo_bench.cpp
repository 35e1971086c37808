// Event files: writing, opening, searching, walking and the replay of one signal, each beside the
// plainest form of the job: records in one vector, or in one for each signal.
//
// The recording has 1000 signals. One is a clock; at each of its rising edges 3 % of the others
// change, a fifth of which are 32 bits wide: as integers ("mix"), or as vectors of std_logic, whose
// elements are 32 signals each ("vectors"). An event of "vectors" is a change of a whole vector.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "corv/stremo/events_stream_read.h"
#include "corv/stremo/events_stream_write.h"
#include "stremo/block_builder.h"
#include "stremo/signal_cursor.h"

namespace {

constexpr int kSignals = 1000;
constexpr int kWide = 5;  // every fifth signal
constexpr int kBits = 32;

struct Change {
    std::int64_t time;
    std::int32_t signal;
    std::uint32_t value;
};

std::vector<Change> MakeChanges(std::size_t count) {
    std::mt19937_64 random(7);
    std::vector<std::uint32_t> values(kSignals, 2);
    std::vector<Change> changes;
    changes.reserve(count + kSignals);
    const auto change = [&](std::int64_t time, std::size_t signal) {
        std::uint32_t& value = values[signal];
        if (signal % kWide != kWide - 1) {
            value = random() % 100 == 0 ? static_cast<std::uint32_t>(random() % 2) * 3 + 1
                                        : 2 + ((value & 1) ^ 1);
        } else {
            value = random() % 2 == 0 ? value + 1 : static_cast<std::uint32_t>(random());
        }
        changes.push_back({time, static_cast<std::int32_t>(signal), value});
    };
    for (std::size_t i = 0; i < kSignals; ++i) {
        change(0, i);
    }
    for (std::int64_t step = 1; changes.size() < count; ++step) {
        change(step * 5000, 0);
        for (int i = 0; step % 2 == 1 && i < kSignals * 3 / 100; ++i) {
            change(step * 5000, 1 + random() % (kSignals - 1));
        }
    }
    return changes;
}

const std::vector<Change>& Changes(std::size_t count) {
    static std::map<std::size_t, std::vector<Change>> made;
    auto found = made.find(count);
    if (found == made.end()) {
        found = made.emplace(count, MakeChanges(count)).first;
    }
    return found->second;
}

// ---- writing ----

bool IsWide(int signal) {
    return signal % kWide == kWide - 1;
}
// The handle of the first element.
int VectorHandle(int signal) {
    return kSignals + signal * kBits;
}

void WriteSignals(IEventsStreamWrite& writer, bool vectors) {
    const std::int64_t none = -1;
    for (int i = 0; i < kSignals; ++i) {
        const std::string name = "top\\unit\\s" + std::to_string(i);
        if (!vectors || !IsWide(i)) {
            writer.WriteScalarSignal(i, name.c_str(), -1, -1, 0, &none);
            writer.WriteTypeInfo(i, IsWide(i) ? "i#7#integerrict0 1" : "e#9#std_logicc9 UX01ZWLH-");
            continue;
        }
        writer.WriteCompositeSignal(-1, kBits, name.c_str(), -1, -1, 0, &none);
        for (int bit = 0; bit < kBits; ++bit) {
            const std::string element = "(" + std::to_string(kBits - 1 - bit) + ")";
            writer.WriteScalarSignal(VectorHandle(i) + bit, element.c_str(), -1, bit, 0, &none);
        }
    }
}

bool WriteVector(IEventsStreamWrite& writer, const Change& change, std::uint32_t differ) {
    for (int bit = 0; bit < kBits; ++bit) {
        const int shift = kBits - 1 - bit;
        const std::uint8_t value = (change.value >> shift & 1) != 0 ? 3 : 2;
        if ((differ >> shift & 1) != 0 &&
            !writer.WriteEvent(VectorHandle(change.signal) + bit, &change.time, &value, 1)) {
            return false;
        }
    }
    return true;
}

std::uintmax_t WriteFile(const std::string& name, const std::vector<Change>& changes,
                         bool vectors) {
    const std::unique_ptr<IEventsStreamWrite> writer(stremo::CreateStreamWrite(name.c_str()));
    WriteSignals(*writer, vectors);
    std::vector<std::uint32_t> values(kSignals);
    bool written = true;
    for (const Change& change : changes) {
        if (vectors && IsWide(change.signal)) {
            std::uint32_t& before = values[static_cast<std::size_t>(change.signal)];
            written &= WriteVector(*writer, change, change.time == 0 ? ~0U : before ^ change.value);
            before = change.value;
        } else {
            const unsigned size = IsWide(change.signal) ? 4 : 1;
            written &= writer->WriteEvent(change.signal, &change.time, &change.value, size);
        }
    }
    return writer->Close() && written ? std::filesystem::file_size(name) : 0;
}

// A file that lives as long as the program.
const std::string& File(std::size_t count, bool vectors = false) {
    struct Made {
        std::map<std::pair<std::size_t, bool>, std::string> names;
        ~Made() {
            for (const auto& [key, name] : names) {
                std::filesystem::remove(name);
            }
        }
    };
    static Made made;
    std::string& name = made.names[{count, vectors}];
    if (name.empty()) {
        name = std::filesystem::temp_directory_path() /
               ("corv_bench_" + std::to_string(count) + (vectors ? "v" : "") + ".evt");
        WriteFile(name, Changes(count), vectors);
    }
    return name;
}

void Write(benchmark::State& state, bool vectors) {
    const std::vector<Change>& changes = Changes(static_cast<std::size_t>(state.range(0)));
    const std::string name = std::filesystem::temp_directory_path() / "corv_bench_write.evt";
    std::uintmax_t size = 0;
    for (auto _ : state) {
        size = WriteFile(name, changes, vectors);
        if (size == 0) {
            state.SkipWithError("not written");
        }
    }
    std::filesystem::remove(name);
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(changes.size()));
    state.counters["bytes_per_event"] =
        static_cast<double>(size) / static_cast<double>(changes.size());
}
void WriteScalars(benchmark::State& state) {
    Write(state, false);
}
void WriteVectors(benchmark::State& state) {
    Write(state, true);
}

// The records as they are, 16 bytes each.
void WritePlain(benchmark::State& state) {
    const std::vector<Change>& changes = Changes(static_cast<std::size_t>(state.range(0)));
    const std::string name = std::filesystem::temp_directory_path() / "corv_bench_write.raw";
    for (auto _ : state) {
        std::FILE* const file = std::fopen(name.c_str(), "wb");
        for (const Change& change : changes) {
            std::fwrite(&change, sizeof change, 1, file);
        }
        std::fclose(file);
    }
    std::filesystem::remove(name);
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(changes.size()));
    state.counters["bytes_per_event"] = sizeof(Change);
}

// Blocks in memory, as the readers of other formats make them: vectors as masks.
void BuildInMemory(benchmark::State& state) {
    namespace recording = corv::recording;
    const std::vector<Change>& changes = Changes(static_cast<std::size_t>(state.range(0)));
    recording::SignalTable signals;
    for (int i = 0; i < kSignals; ++i) {
        recording::Signal signal;
        signal.composite = IsWide(i);
        signal.member_count = IsWide(i) ? kBits : 0;
        signals.Add(signal);
        signal = {};
        signal.joins = true;
        for (int bit = 0; IsWide(i) && bit < kBits; ++bit) {
            signals.Add(signal);
        }
    }
    signals.Finish();
    std::vector<std::uint32_t> channels;
    for (const std::uint32_t top : signals.TopLevel()) {
        const std::uint32_t first = signals[top].composite ? signals.Members(top)[0] : top;
        channels.push_back(signals.LeafChannel(signals[first].leaf));
    }
    std::size_t bytes = 0;
    for (auto _ : state) {
        recording::MemoryBlocks blocks;
        recording::BlockBuilder builder(signals, blocks, recording::EventOrder::kBySignal);
        std::vector<std::uint32_t> values(kSignals);
        for (const Change& change : changes) {
            const auto signal = static_cast<std::size_t>(change.signal);
            builder.SetTime(change.time);
            if (!IsWide(change.signal)) {
                builder.Set(signals.channel(channels[signal]).first_leaf, change.value);
            } else if (change.time == 0) {
                builder.SetElements(channels[signal], ~0U,
                                    std::vector<std::uint64_t>(kBits, 2).data());
            } else if (values[signal] != change.value) {
                builder.Toggle(channels[signal], values[signal] ^ change.value);
                values[signal] = change.value;
            }
        }
        builder.Flush();
        bytes = blocks.bytes();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(changes.size()));
    state.counters["bytes_per_event"] =
        static_cast<double>(bytes) / static_cast<double>(changes.size());
}

// ---- opening and searching ----

using Reader = std::unique_ptr<stremo::IEventsStreamRead>;

Reader Open(const std::string& name) {
    return Reader(stremo::CreateStreamRead(name.c_str()));
}

void OpenWhole(benchmark::State& state) {
    const std::string& name = File(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        const Reader reader = Open(name);
        benchmark::DoNotOptimize(reader->GetSignalCount());
    }
}

// A file without its end, as a killed writer leaves it.
void OpenCut(benchmark::State& state) {
    const std::string& whole = File(static_cast<std::size_t>(state.range(0)));
    const std::string name = whole + ".cut";
    std::filesystem::copy_file(whole, name, std::filesystem::copy_options::overwrite_existing);
    std::filesystem::resize_file(name, std::filesystem::file_size(whole) - 1'000'000);
    for (auto _ : state) {
        const Reader reader = Open(name);
        benchmark::DoNotOptimize(reader->GetSignalCount());
    }
    std::filesystem::remove(name);
}

std::vector<std::int64_t> RandomTimes(std::size_t count, std::int64_t end) {
    std::mt19937_64 random(3);
    std::vector<std::int64_t> times(count);
    for (std::int64_t& time : times) {
        time = static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(end + 1));
    }
    return times;
}

template <class Then>
void SeekAnd(benchmark::State& state, Then then) {
    const auto count = static_cast<std::size_t>(state.range(0));
    const std::vector<std::int64_t> times = RandomTimes(4096, Changes(count).back().time);
    const Reader reader = Open(File(count));
    std::size_t i = 0;
    for (auto _ : state) {
        if (!reader->Seek(&times[i++ % times.size()])) {
            state.SkipWithError("no place");
        }
        then(*reader);
    }
}
void SeekOnly(benchmark::State& state) {
    SeekAnd(state, [](stremo::IEventsStreamRead& reader) {
        benchmark::DoNotOptimize(*reader.GetCurrentTime());
    });
}
void SeekValue(benchmark::State& state) {
    int handle = 0;
    SeekAnd(state, [&](stremo::IEventsStreamRead& reader) {
        std::uint64_t value[2];
        handle = (handle + 1) % kSignals;
        benchmark::DoNotOptimize(reader.GetCachedValue(handle, value));
    });
}
void SeekNext(benchmark::State& state) {
    SeekAnd(state,
            [](stremo::IEventsStreamRead& reader) { benchmark::DoNotOptimize(reader.Next()); });
}
void SeekPlain(benchmark::State& state) {
    const std::vector<Change>& changes = Changes(static_cast<std::size_t>(state.range(0)));
    const std::vector<std::int64_t> times = RandomTimes(4096, changes.back().time);
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(std::lower_bound(
            changes.begin(), changes.end(), times[i++ % times.size()],
            [](const Change& change, std::int64_t time) { return change.time < time; }));
    }
}

// ---- reading ----

void ReadAll(benchmark::State& state, bool vectors) {
    const auto count = static_cast<std::size_t>(state.range(0));
    const std::string& name = File(count, vectors);
    std::int64_t events = 0;
    for (auto _ : state) {
        const Reader reader = Open(name);
        std::uint64_t sum = 0;
        std::uint64_t value[2];
        for (int handle = reader->Next(); handle != -1; handle = reader->Next()) {
            reader->ReadValue(value);
            sum += value[0] + static_cast<std::uint64_t>(*reader->GetCurrentTime());
            ++events;
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(events);
}
void ReadScalars(benchmark::State& state) {
    ReadAll(state, false);
}
void ReadAllVectors(benchmark::State& state) {
    ReadAll(state, true);
}
void ReadAllPlain(benchmark::State& state) {
    const std::vector<Change>& changes = Changes(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        std::uint64_t sum = 0;
        for (const Change& change : changes) {
            benchmark::DoNotOptimize(change.signal);
            sum += change.value + static_cast<std::uint64_t>(change.time);
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(changes.size()));
}

// ---- replay of one signal ----

// Its next event and its value there, from the beginning to the end; one question is both.
std::int64_t Replay(stremo::IEventsStreamRead& reader, int handle) {
    const auto cursor = corv::recording::OwnReader(&reader)->OpenSignal(handle);
    std::uint64_t value[2];
    std::int64_t questions = 0;
    for (std::int64_t time = -1; (time = cursor->NextTime(time)) != -1; ++questions) {
        benchmark::DoNotOptimize(cursor->Value(time, value));
    }
    return questions;
}
void Replay(benchmark::State& state) {
    const Reader reader = Open(File(static_cast<std::size_t>(state.range(0))));
    std::int64_t questions = 0;
    int handle = 0;
    for (auto _ : state) {
        handle = 1 + handle % (kSignals - 1);
        questions += Replay(*reader, handle);
    }
    state.SetItemsProcessed(questions);
}
// With opening and closing, and every block read and checked for the first time.
void ReplayFirst(benchmark::State& state) {
    const std::string& name = File(static_cast<std::size_t>(state.range(0)));
    std::int64_t questions = 0;
    int handle = 0;
    for (auto _ : state) {
        handle = 1 + handle % (kSignals - 1);
        questions += Replay(*Open(name), handle);
    }
    state.SetItemsProcessed(questions);
}
// The same through the listed operations alone, 100 questions.
void ReplayBySeek(benchmark::State& state) {
    const Reader reader = Open(File(static_cast<std::size_t>(state.range(0))));
    std::int64_t questions = 0;
    for (auto _ : state) {
        std::int64_t time = -1;
        for (int i = 0; i < 100; ++i, ++questions) {
            const std::int64_t target = time + 1;
            reader->Seek(&target);
            int handle = reader->Next();
            while (handle != -1 && handle != 500) {
                handle = reader->Next();
            }
            time = *reader->GetCurrentTime();
        }
    }
    state.SetItemsProcessed(questions);
}
// Each signal's events in a list of its own.
void ReplayPlain(benchmark::State& state) {
    std::vector<std::vector<Change>> lists(kSignals);
    for (const Change& change : Changes(static_cast<std::size_t>(state.range(0)))) {
        lists[static_cast<std::size_t>(change.signal)].push_back(change);
    }
    std::int64_t questions = 0;
    std::size_t signal = 0;
    for (auto _ : state) {
        signal = 1 + signal % (kSignals - 1);
        for (const Change& change : lists[signal]) {
            benchmark::DoNotOptimize(change.time);
            benchmark::DoNotOptimize(change.value);
            ++questions;
        }
    }
    state.SetItemsProcessed(questions);
}

BENCHMARK(WriteScalars)
    ->Name("event_file/write/corv")
    ->Arg(10'000'000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(WriteVectors)
    ->Name("event_file/write_vectors/corv")
    ->Arg(10'000'000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(WritePlain)
    ->Name("event_file/write/plain")
    ->Arg(10'000'000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BuildInMemory)
    ->Name("event_file/build_in_memory/corv")
    ->Arg(10'000'000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(OpenWhole)
    ->Name("event_file/open/corv")
    ->Arg(1'000'000)
    ->Arg(10'000'000)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(OpenCut)
    ->Name("event_file/open_cut/corv")
    ->Arg(10'000'000)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(SeekOnly)->Name("event_file/seek/corv")->Arg(10'000'000);
BENCHMARK(SeekValue)->Name("event_file/seek_value/corv")->Arg(10'000'000);
BENCHMARK(SeekNext)->Name("event_file/seek_next/corv")->Arg(10'000'000);
BENCHMARK(SeekPlain)->Name("event_file/seek/plain")->Arg(10'000'000);
BENCHMARK(ReadScalars)
    ->Name("event_file/read/corv")
    ->Arg(10'000'000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(ReadAllVectors)
    ->Name("event_file/read_vectors/corv")
    ->Arg(10'000'000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(ReadAllPlain)
    ->Name("event_file/read/plain")
    ->Arg(10'000'000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(Replay)
    ->Name("event_file/replay/corv")
    ->Arg(1'000'000)
    ->Arg(10'000'000)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(ReplayFirst)
    ->Name("event_file/replay_first/corv")
    ->Arg(1'000'000)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(ReplayBySeek)
    ->Name("event_file/replay_by_seek/corv")
    ->Arg(1'000'000)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(ReplayPlain)
    ->Name("event_file/replay/plain")
    ->Arg(1'000'000)
    ->Unit(benchmark::kMicrosecond);

}  // namespace
