// Registering, finding, saving and loading, each beside the plainest form of the job on standard
// containers.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "../tests/containers/fake_reader.h"
#include "../tests/containers/memory_stream.h"
#include "../tests/support/fake_signal.h"
#include "corv/corv.h"
#include "platform/ascii.h"

namespace {

using corv::frame::ComPtr;
using corv::test::FakePtr;
using SignalPtr = ComPtr<ISignal>;

void SetRate(benchmark::State& state, std::size_t items) {
    state.SetItemsProcessed(static_cast<std::int64_t>(items) * state.iterations());
}

// ---- the handle manager ----

// Signals are only asked for their handle and wave: all of them share one wave.
std::vector<FakePtr> MakeLeaves(std::size_t n, std::size_t handles) {
    ComPtr<ISignalWave> wave;
    CreateSignalWave(4, wave.Out());
    std::vector<FakePtr> leaves;
    for (std::size_t i = 0; i < n; ++i) {
        leaves.push_back(corv::test::NewFake(nullptr));
        leaves.back()->SetHandle(static_cast<int>(i % handles));
        leaves.back()->SetWave(wave.get());
    }
    return leaves;
}

// A map with a list at each handle.
class PlainManager {
public:
    void AddSignal(ISignal* signal) {
        std::vector<ISignal*>& list = lists_[signal->GetHandle()];
        if (signal->GetWave() != nullptr &&
            std::find(list.begin(), list.end(), signal) == list.end()) {
            list.push_back(signal);
        }
    }
    void RemoveSignal(ISignal* signal) {
        const auto list = lists_.find(signal->GetHandle());
        if (list == lists_.end()) {
            return;
        }
        const auto at = std::find(list->second.begin(), list->second.end(), signal);
        if (at != list->second.end()) {
            list->second.erase(at);
        }
        if (list->second.empty()) {
            lists_.erase(list);
        }
    }
    ISignal* GetFirstSignal(int handle) {
        const auto list = lists_.find(handle);
        return list != lists_.end() ? list->second.front() : nullptr;
    }
    int CountHandles() {
        int count = 0;
        for (const auto& list : lists_) {
            benchmark::DoNotOptimize(list.first);
            ++count;
        }
        return count;
    }

private:
    std::map<int, std::vector<ISignal*>> lists_;
};

class CorvManager {
public:
    CorvManager() { CreateHandleManager(manager_.Out()); }
    void AddSignal(ISignal* signal) { manager_->AddSignal(signal); }
    void RemoveSignal(ISignal* signal) { manager_->RemoveSignal(signal); }
    ISignal* GetFirstSignal(int handle) { return manager_->GetFirstSignal(handle); }
    int CountHandles() {
        int count = 0;
        for (int handle = manager_->GetFirstHandle(); handle != -1;
             handle = manager_->GetNextHandle()) {
            ++count;
        }
        return count;
    }

private:
    ComPtr<IHandleManager> manager_;
};

std::vector<std::uint32_t> RandomPlaces(std::size_t n) {
    std::vector<std::uint32_t> places(std::size_t{1} << 16);
    std::mt19937_64 random(3);
    for (auto& place : places) {
        place = static_cast<std::uint32_t>(random() % n);
    }
    return places;
}

// Takes random signals out of a full manager and puts them in again.
template <class Manager>
void RemoveAndAdd(benchmark::State& state) {
    const auto n = static_cast<std::size_t>(state.range(0));
    const auto leaves = MakeLeaves(n, static_cast<std::size_t>(state.range(1)));
    const auto places = RandomPlaces(n);
    Manager manager;
    for (const FakePtr& leaf : leaves) {
        manager.AddSignal(leaf.get());
    }
    std::size_t next = 0;
    for (auto _ : state) {
        ISignal* const signal = leaves[places[next++ & 0xffff]].get();
        manager.RemoveSignal(signal);
        manager.AddSignal(signal);
    }
    SetRate(state, 2);
}

template <class Manager>
void FirstSignal(benchmark::State& state) {
    const auto n = static_cast<std::size_t>(state.range(0));
    const auto leaves = MakeLeaves(n, n);
    const auto places = RandomPlaces(n);
    Manager manager;
    for (const FakePtr& leaf : leaves) {
        manager.AddSignal(leaf.get());
    }
    std::size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(manager.GetFirstSignal(static_cast<int>(places[next++ & 0xffff])));
    }
}

template <class Manager>
void WalkHandles(benchmark::State& state) {
    const auto n = static_cast<std::size_t>(state.range(0));
    const auto leaves = MakeLeaves(n, n);
    Manager manager;
    for (const FakePtr& leaf : leaves) {
        manager.AddSignal(leaf.get());
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(manager.CountHandles());
    }
    SetRate(state, n);
}

// ---- finding by name ----

std::string NameOf(std::size_t i) {
    return "uut_signal_" + std::to_string(i);
}

// Signals that have nothing but a name.
class PlainNamed {
public:
    explicit PlainNamed(std::string name) : name_(std::move(name)) {}
    virtual ~PlainNamed() = default;
    virtual const char* GetName() { return name_.c_str(); }

private:
    std::string name_;
};

bool IsEqual(const char* a, const char* b) {
    while (*a != '\0' && corv::platform::Lower(*a) == corv::platform::Lower(*b)) {
        ++a;
        ++b;
    }
    return *a == *b;
}

void FindPlain(benchmark::State& state) {
    const auto n = static_cast<std::size_t>(state.range(0));
    std::vector<std::unique_ptr<PlainNamed>> signals;
    for (std::size_t i = 0; i < n; ++i) {
        signals.push_back(std::make_unique<PlainNamed>(NameOf(i)));
    }
    const std::string wanted = NameOf(n - 1);
    for (auto _ : state) {
        PlainNamed* found = nullptr;
        for (std::size_t i = 0; found == nullptr && i < n; ++i) {
            found = IsEqual(signals[i]->GetName(), wanted.c_str()) ? signals[i].get() : nullptr;
        }
        benchmark::DoNotOptimize(found);
    }
}

ComPtr<ISignalContainer> MakeContainer() {
    ComPtr<ISignalContainer> container;
    CreateSignalContainer(container.Out(), nullptr);
    return container;
}

ComPtr<ISignalContainer> MakeSignals(std::size_t n) {
    auto container = MakeContainer();
    for (std::size_t i = 0; i < n; ++i) {
        SignalPtr signal;
        CreateStdSignal(1, nullptr, signal.Out());
        signal->SetName(NameOf(i).c_str());
        container->Add(signal.get());
    }
    return container;
}

void FindCorv(benchmark::State& state) {
    const auto n = static_cast<std::size_t>(state.range(0));
    const auto container = MakeSignals(n);
    const std::string wanted = NameOf(n - 1);
    for (auto _ : state) {
        ISignal* found = nullptr;
        container->FindSignal(wanted.c_str(), &found);
        benchmark::DoNotOptimize(found);
    }
}

// The same after a change of a name each time.
void FindRenamed(benchmark::State& state) {
    const auto n = static_cast<std::size_t>(state.range(0));
    const auto container = MakeSignals(n);
    const std::string wanted = NameOf(n - 1);
    ISignal* first = nullptr;
    container->GetAt(0, &first);
    for (auto _ : state) {
        ISignal* found = nullptr;
        first->SetName("renamed");
        container->FindSignal(wanted.c_str(), &found);
        benchmark::DoNotOptimize(found);
    }
}

// ---- saving and loading ----

// Buses of 16 bits: 17 signals each.
ComPtr<ISignalContainer> MakeBuses(std::size_t n) {
    auto container = MakeContainer();
    for (std::size_t i = 0; i < n; ++i) {
        SignalPtr signal;
        CreateSignal("a#23#bit_vector(15 downto 0)1 ricd15 0 e#3#bitc2 01", nullptr, signal.Out());
        signal->SetName(NameOf(i).c_str());
        container->Add(signal.get());
    }
    return container;
}

void Save(benchmark::State& state) {
    const auto container = MakeBuses(static_cast<std::size_t>(state.range(0)));
    corv::test::MemoryStream stream;
    for (auto _ : state) {
        stream.bytes.clear();
        container->Save(&stream);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(stream.bytes.size()) * state.iterations());
}

void Load(benchmark::State& state) {
    corv::test::MemoryStream stream;
    MakeBuses(static_cast<std::size_t>(state.range(0)))->Save(&stream);
    for (auto _ : state) {
        stream.position = 0;
        auto container = MakeContainer();
        container->Load(&stream, nullptr);
        state.PauseTiming();
        container = {};
        state.ResumeTiming();
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(stream.bytes.size()) * state.iterations());
}

// A tree of nothing but properties and members.
struct PlainNode {
    std::map<std::string, std::string> properties;
    std::vector<std::unique_ptr<PlainNode>> members;

    static void WriteNumber(IByteStream& stream, std::size_t number) {
        const auto bytes = static_cast<std::uint16_t>(number);
        stream.Write(&bytes, sizeof bytes);
    }
    static void WriteText(IByteStream& stream, const std::string& text) {
        WriteNumber(stream, text.size());
        stream.Write(text.data(), static_cast<std::uint32_t>(text.size()));
    }
    static std::size_t ReadNumber(IByteStream& stream) {
        std::uint16_t bytes = 0;
        stream.Read(&bytes, sizeof bytes);
        return bytes;
    }
    static std::string ReadText(IByteStream& stream) {
        std::string text(ReadNumber(stream), ' ');
        stream.Read(text.data(), static_cast<std::uint32_t>(text.size()));
        return text;
    }

    void SaveMembers(IByteStream& stream) const {
        WriteNumber(stream, members.size());
        for (const auto& member : members) {
            WriteNumber(stream, member->properties.size());
            for (const auto& [key, value] : member->properties) {
                WriteText(stream, key);
                WriteText(stream, value);
            }
            member->SaveMembers(stream);
        }
    }
    void LoadMembers(IByteStream& stream) {
        members.resize(ReadNumber(stream));
        for (auto& member : members) {
            member = std::make_unique<PlainNode>();
            for (std::size_t i = ReadNumber(stream); i > 0; --i) {
                std::string key = ReadText(stream);
                member->properties[std::move(key)] = ReadText(stream);
            }
            member->LoadMembers(stream);
        }
    }
};

void SavePlain(benchmark::State& state) {
    corv::test::MemoryStream stream;
    MakeBuses(static_cast<std::size_t>(state.range(0)))->Save(&stream);
    PlainNode tree;
    tree.LoadMembers(stream);
    for (auto _ : state) {
        stream.bytes.clear();
        tree.SaveMembers(stream);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(stream.bytes.size()) * state.iterations());
}

void LoadPlain(benchmark::State& state) {
    corv::test::MemoryStream stream;
    MakeBuses(static_cast<std::size_t>(state.range(0)))->Save(&stream);
    for (auto _ : state) {
        stream.position = 0;
        auto tree = std::make_unique<PlainNode>();
        tree->LoadMembers(stream);
        state.PauseTiming();
        tree = nullptr;
        state.ResumeTiming();
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(stream.bytes.size()) * state.iterations());
}

// The same signals, made one by one and kept in a plain list.
void MakeAlone(benchmark::State& state) {
    for (auto _ : state) {
        std::vector<SignalPtr> signals;
        for (int i = 0; i < state.range(0); ++i) {
            SignalPtr signal;
            CreateSignal("e#3#bitc2 01", nullptr, signal.Out());
            signal->SetName(NameOf(static_cast<std::size_t>(i)).c_str());
            signal->SetHandle(i);
            signal->SetMode(i);
            signal->SetProperty("MaxTime", "0");
            signals.push_back(std::move(signal));
        }
        state.PauseTiming();
        signals.clear();
        state.ResumeTiming();
    }
    SetRate(state, static_cast<std::size_t>(state.range(0)));
}

// Top-level signals, which are looked for by their names as they are loaded.
void LoadFromReader(benchmark::State& state) {
    corv::test::FakeReader reader;
    for (int i = 0; i < state.range(0); ++i) {
        reader.top.push_back(i);
        reader.signals[i] = {NameOf(static_cast<std::size_t>(i)), "e#3#bitc2 01", 0, {}};
    }
    for (auto _ : state) {
        auto container = MakeContainer();
        container->LoadFromReader(&reader);
        state.PauseTiming();
        container = {};
        state.ResumeTiming();
    }
    SetRate(state, reader.top.size());
}

BENCHMARK(RemoveAndAdd<PlainManager>)
    ->Name("containers/remove_and_add/plain")
    ->ArgNames({"signals", "handles"})
    ->Args({1'000'000, 1'000'000})
    ->Args({10'000, 1});
BENCHMARK(RemoveAndAdd<CorvManager>)
    ->Name("containers/remove_and_add/corv")
    ->ArgNames({"signals", "handles"})
    ->Args({1'000, 1'000})
    ->Args({1'000'000, 1'000'000})
    ->Args({10'000, 1});
BENCHMARK(FirstSignal<PlainManager>)->Name("containers/first_signal/plain")->Arg(1'000'000);
BENCHMARK(FirstSignal<CorvManager>)->Name("containers/first_signal/corv")->Arg(1'000'000);
BENCHMARK(WalkHandles<PlainManager>)->Name("containers/walk_handles/plain")->Arg(1'000'000);
BENCHMARK(WalkHandles<CorvManager>)->Name("containers/walk_handles/corv")->Arg(1'000'000);
BENCHMARK(FindPlain)->Name("containers/find/plain")->Arg(1'000)->Arg(100'000);
BENCHMARK(FindCorv)->Name("containers/find/corv")->Arg(1'000)->Arg(100'000);
BENCHMARK(FindRenamed)->Name("containers/find_renamed/corv")->Arg(1'000)->Arg(100'000);
BENCHMARK(SavePlain)->Name("containers/save/plain")->Arg(600)->Arg(6'000);
BENCHMARK(Save)->Name("containers/save/corv")->Arg(600)->Arg(6'000);
BENCHMARK(MakeAlone)->Name("containers/load_from_reader/plain")->Arg(1'000)->Arg(100'000);
BENCHMARK(LoadFromReader)
    ->Name("containers/load_from_reader/corv")
    ->Arg(1'000)
    ->Arg(10'000)
    ->Arg(100'000);
BENCHMARK(LoadPlain)->Name("containers/load/plain")->Arg(600)->Arg(6'000);
BENCHMARK(Load)->Name("containers/load/corv")->Arg(600)->Arg(6'000);

}  // namespace
