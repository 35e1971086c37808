// The signals and scalars of a recording: loading, finding, adding and removing them, each beside
// the plainest form of the job on standard containers.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "../tests/containers/fake_reader.h"
#include "corv/corv.h"

namespace {

using corv::IScalarDataContainer;
using corv::ISignalData;
using corv::ISignalDataContainer;
using corv::frame::ComPtr;
using DataPtr = ComPtr<ISignalData>;

constexpr const char* kBit = "e#3#bitc2 01";

std::size_t Count(const benchmark::State& state) {
    return static_cast<std::size_t>(state.range(0));
}

void SetRate(benchmark::State& state, std::size_t items) {
    state.SetItemsProcessed(static_cast<std::int64_t>(items) * state.iterations());
}

DataPtr NewData() {
    DataPtr data;
    corv::CreateSignalData(data.Out());
    return data;
}

ComPtr<IScalarDataContainer> NewScalars() {
    ComPtr<IScalarDataContainer> scalars;
    corv::CreateScalarDataContainer(scalars.Out());
    return scalars;
}

// One signal of n scalars.
corv::test::FakeReader MakeReader(int n) {
    corv::test::FakeReader reader;
    reader.signals[0] = {"top.bus", kBit, 1000, {}};
    for (int i = 1; i <= n; ++i) {
        reader.signals[0].members.push_back(i);
        reader.signals[i] = {"(" + std::to_string(i) + ")", kBit, 1000, {}};
    }
    return reader;
}

struct PlainSignal {
    std::string name, type;
    int mode = 0;
    std::int64_t max_time = 0;
    std::map<std::string, std::string> properties;
    std::vector<std::unique_ptr<PlainSignal>> members;
    std::vector<int> handles;

    void Load(stremo::IEventsStreamRead& reader, int handle, std::vector<int>& list,
              std::set<int>& known) {
        bool has_members = false;
        int count = 0;
        CString text;
        reader.GetSignalInfo(handle, has_members, count, text, mode, max_time);
        name = text;
        type = reader.GetTypeString(handle);
        for (const char* const key : {"Stimulator", "VBus"}) {
            if (const char* const value = reader.GetSignalProperty(handle, key)) {
                properties[key] = value;
            }
        }
        if (!has_members && known.insert(handle).second) {
            list.push_back(handle);
        }
        for (int i = 0; has_members && i < count; ++i) {
            members.push_back(std::make_unique<PlainSignal>());
            members.back()->Load(reader, reader.GetSubSignalHandle(handle, i), list, known);
        }
    }
};

struct PlainScalar {
    unsigned char value[10] = {};
    unsigned size = 0;
    std::set<int> ids;
};

// Loads a signal and adds its scalars to the index.
void LoadAndAddPlain(benchmark::State& state) {
    auto reader = MakeReader(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        auto signal = std::make_unique<PlainSignal>();
        auto scalars = std::make_unique<std::map<int, PlainScalar>>();
        std::set<int> known;
        signal->Load(reader, 0, signal->handles, known);
        for (const int handle : signal->handles) {
            (*scalars)[handle].ids.insert(5);
        }
        state.PauseTiming();
        signal = nullptr;
        scalars = nullptr;
        state.ResumeTiming();
    }
    SetRate(state, Count(state));
}

void LoadAndAdd(benchmark::State& state) {
    auto reader = MakeReader(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        DataPtr signal = NewData();
        auto scalars = NewScalars();
        signal->LoadFromReader(&reader, 0);
        signal->SetId(5);
        scalars->AddSignalData(signal.get());
        benchmark::DoNotOptimize(scalars->GetItemAt(0));
        state.PauseTiming();
        signal = {};
        scalars = {};
        state.ResumeTiming();
    }
    SetRate(state, Count(state));
}

// ---- adding and removing the scalars of a signal, whose handles come in an order ----

enum Order : std::int64_t { kRising, kFalling, kRandom };

std::vector<int> Handles(const benchmark::State& state) {
    std::vector<int> handles(Count(state));
    for (std::size_t i = 0; i < handles.size(); ++i) {
        handles[i] = static_cast<int>(i);
    }
    if (state.range(1) == kFalling) {
        std::reverse(handles.begin(), handles.end());
    } else if (state.range(1) == kRandom) {
        std::shuffle(handles.begin(), handles.end(), std::mt19937(7));
    }
    return handles;
}

void AddAndRemovePlain(benchmark::State& state) {
    const std::vector<int> handles = Handles(state);
    for (auto _ : state) {
        std::map<int, PlainScalar> scalars;
        for (const int handle : handles) {
            scalars[handle].ids.insert(5);
        }
        for (const int handle : handles) {
            const auto entry = scalars.find(handle);
            entry->second.ids.erase(5);
            if (entry->second.ids.empty()) {
                scalars.erase(entry);
            }
        }
    }
    SetRate(state, 2 * handles.size());
}

void AddAndRemove(benchmark::State& state) {
    const DataPtr signal = NewData();
    signal->SetId(5);
    const std::vector<int> handles = Handles(state);
    for (const int handle : handles) {
        signal->AddHandle(handle);
    }
    const auto scalars = NewScalars();
    for (auto _ : state) {
        scalars->AddSignalData(signal.get());
        benchmark::DoNotOptimize(scalars->GetItemAt(0));
        scalars->RemoveSignalData(signal.get());
    }
    SetRate(state, 2 * handles.size());
}

void AddHandlesPlain(benchmark::State& state) {
    const std::vector<int> handles = Handles(state);
    for (auto _ : state) {
        std::vector<int> list;
        std::set<int> known;
        for (const int handle : handles) {
            if (known.insert(handle).second) {
                list.push_back(handle);
            }
        }
    }
    SetRate(state, handles.size());
}

void AddHandles(benchmark::State& state) {
    const std::vector<int> handles = Handles(state);
    const DataPtr signal = NewData();
    for (auto _ : state) {
        signal->ClearHandles();
        for (const int handle : handles) {
            signal->AddHandle(handle);
        }
    }
    SetRate(state, handles.size());
}

// ---- questions ----

constexpr std::size_t kQuestions = std::size_t{1} << 14;

// Random numbers below n, 16 apart.
std::vector<int> Questions(std::size_t n) {
    std::vector<int> questions(kQuestions);
    std::mt19937 random(3);
    for (int& question : questions) {
        question = static_cast<int>(random() % n) * 16;
    }
    return questions;
}

template <class Ask>
void AskAll(benchmark::State& state, const std::vector<int>& questions, Ask ask) {
    for (auto _ : state) {
        for (const int question : questions) {
            benchmark::DoNotOptimize(ask(question));
        }
    }
    SetRate(state, questions.size());
}

void FindByIdPlain(benchmark::State& state) {
    std::map<int, std::string> signals;
    for (std::size_t i = 0; i < Count(state); ++i) {
        signals[static_cast<int>(i) * 16] = "s";
    }
    AskAll(state, Questions(Count(state)), [&](int id) { return &signals.find(id)->second; });
}

void FindById(benchmark::State& state) {
    ComPtr<ISignalDataContainer> signals;
    corv::CreateSignalDataContainer(signals.Out());
    for (std::size_t i = 0; i < Count(state); ++i) {
        const DataPtr signal = NewData();
        signal->SetId(static_cast<int>(i) * 16);
        signals->Add(signal.get());
    }
    AskAll(state, Questions(Count(state)), [&](int id) { return signals->FindById(id); });
}

void FindItemPlain(benchmark::State& state) {
    std::map<int, PlainScalar> scalars;
    for (std::size_t i = 0; i < Count(state); ++i) {
        scalars[static_cast<int>(i) * 16].ids.insert(5);
    }
    AskAll(state, Questions(Count(state)),
           [&](int handle) { return &scalars.find(handle)->second; });
}

ComPtr<IScalarDataContainer> FilledScalars(std::size_t n) {
    auto scalars = NewScalars();
    for (std::size_t i = 0; i < n; ++i) {
        scalars->AddReference(static_cast<int>(i) * 16, 5);
    }
    return scalars;
}

void FindItem(benchmark::State& state) {
    const auto scalars = FilledScalars(Count(state));
    AskAll(state, Questions(Count(state)), [&](int handle) { return scalars->FindItem(handle); });
}

void GetItemAt(benchmark::State& state) {
    const auto scalars = FilledScalars(Count(state));
    AskAll(state, Questions(Count(state)),
           [&](int place) { return scalars->GetItemAt(static_cast<unsigned>(place) / 16); });
}

void GetHandleAt(benchmark::State& state) {
    const DataPtr signal = NewData();
    for (std::size_t i = 0; i < Count(state); ++i) {
        signal->AddHandle(static_cast<int>(i));
    }
    AskAll(state, Questions(Count(state)),
           [&](int place) { return signal->GetHandleAt(static_cast<unsigned>(place) / 16); });
}

// A vector, indexed out of line.
struct PlainList {
    std::vector<int> items;
    __attribute__((noinline)) int At(unsigned index) const {
        return index < items.size() ? items[index] : -1;
    }
};

void AtPlain(benchmark::State& state) {
    const PlainList list{std::vector<int>(Count(state), 7)};
    AskAll(state, Questions(Count(state)),
           [&](int place) { return list.At(static_cast<unsigned>(place) / 16); });
}

BENCHMARK(LoadAndAddPlain)->Name("recorded_data/load_and_add/plain")->Arg(100'000);
BENCHMARK(LoadAndAdd)->Name("recorded_data/load_and_add/corv")->Arg(10'000)->Arg(100'000);
BENCHMARK(AddAndRemovePlain)
    ->Name("recorded_data/add_and_remove/plain")
    ->ArgNames({"scalars", "order"})
    ->ArgsProduct({{100'000}, {kRising, kFalling, kRandom}});
BENCHMARK(AddAndRemove)
    ->Name("recorded_data/add_and_remove/corv")
    ->ArgNames({"scalars", "order"})
    ->ArgsProduct({{10'000, 100'000, 1'000'000}, {kRising, kFalling, kRandom}});
BENCHMARK(AddHandlesPlain)
    ->Name("recorded_data/add_handles/plain")
    ->ArgNames({"scalars", "order"})
    ->ArgsProduct({{100'000}, {kRising, kFalling, kRandom}});
BENCHMARK(AddHandles)
    ->Name("recorded_data/add_handles/corv")
    ->ArgNames({"scalars", "order"})
    ->ArgsProduct({{100'000}, {kRising, kFalling, kRandom}});
BENCHMARK(FindByIdPlain)->Name("recorded_data/find_by_id/plain")->Arg(1'000)->Arg(100'000);
BENCHMARK(FindById)->Name("recorded_data/find_by_id/corv")->Arg(1'000)->Arg(100'000);
BENCHMARK(FindItemPlain)->Name("recorded_data/find_item/plain")->Arg(1'000)->Arg(100'000);
BENCHMARK(FindItem)->Name("recorded_data/find_item/corv")->Arg(1'000)->Arg(100'000);
BENCHMARK(AtPlain)->Name("recorded_data/item_at/plain")->Arg(1'000)->Arg(100'000);
BENCHMARK(GetItemAt)->Name("recorded_data/item_at/corv")->Arg(1'000)->Arg(100'000);
BENCHMARK(AtPlain)->Name("recorded_data/handle_at/plain")->Arg(1'000)->Arg(100'000);
BENCHMARK(GetHandleAt)->Name("recorded_data/handle_at/corv")->Arg(1'000)->Arg(100'000);

}  // namespace
