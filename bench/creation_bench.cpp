// Making and asking signals, beside trees of plain nodes that hold the same names and values.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "corv/corv.h"

namespace {

using corv::frame::ComPtr;

constexpr const char* kLogic = "e#9#std_logicc9 UX01ZWLH-";

std::string VectorType(int width) {
    const std::string name = "std_logic_vector(" + std::to_string(width - 1) + " downto 0)";
    return "a#" + std::to_string(name.size()) + "#" + name + "1 ricd" + std::to_string(width - 1) +
           " 0 " + kLogic;
}

std::string RecordType(int leaves) {
    std::string type = "r#3#rec" + std::to_string(leaves) + " ";
    for (int i = 0; i < leaves; ++i) {
        type += (i > 0 ? " f" : "f") + std::to_string(i) + " " + kLogic;
    }
    return type;
}

// The least that a leaf is: a node with its texts and an empty list of events.
struct PlainNode {
    std::map<std::string, std::string> properties;
    std::vector<std::int64_t> events;
    std::vector<std::unique_ptr<PlainNode>> members;
};

std::unique_ptr<PlainNode> MakePlain(int leaves, const std::string& type) {
    auto top = std::make_unique<PlainNode>();
    top->properties["Type Info"] = type;
    for (int i = 0; i < leaves; ++i) {
        auto member = std::make_unique<PlainNode>();
        member->properties["Name"] = "(" + std::to_string(i) + ")";
        member->properties["Type Info"] = kLogic;
        member->properties["Display Mode"] = "0";
        top->members.push_back(std::move(member));
    }
    return top;
}

void CreateSignals(benchmark::State& state, const std::string& type) {
    for (auto _ : state) {
        ComPtr<ISignal> signal;
        CreateSignal(type.c_str(), nullptr, signal.Out());
        benchmark::DoNotOptimize(signal.get());
    }
}
void CreatePlain(benchmark::State& state, int leaves, const std::string& type) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(MakePlain(leaves, type));
    }
}
BENCHMARK_CAPTURE(CreateSignals, vector64, VectorType(64))->Name("create/vector64/corv");
BENCHMARK_CAPTURE(CreatePlain, vector64, 64, VectorType(64))->Name("create/vector64/plain");
BENCHMARK_CAPTURE(CreateSignals, record1000, RecordType(1000))->Name("create/record1000/corv");
BENCHMARK_CAPTURE(CreatePlain, record1000, 1000, RecordType(1000))->Name("create/record1000/plain");

void ReadProperties(benchmark::State& state) {
    ComPtr<ISignal> signal;
    CreateStdSignal(1, nullptr, signal.Out());
    signal->SetName("top.u1.clk");
    signal->SetHandle(17);
    for (auto _ : state) {
        benchmark::DoNotOptimize(signal->GetName());
        benchmark::DoNotOptimize(signal->GetMaxTime());
        benchmark::DoNotOptimize(signal->GetDisplayMode());
    }
}
void ReadMap(benchmark::State& state) {
    const std::map<std::string, std::string> properties{
        {"Display Mode", "0"}, {"Handle", "17"}, {"Name", "top.u1.clk"}, {"Type Info", kLogic}};
    const std::string name = "Name";
    const std::string mode = "Display Mode";
    const std::string max_time = "MaxTime";
    for (auto _ : state) {
        benchmark::DoNotOptimize(properties.find(name));
        benchmark::DoNotOptimize(properties.find(max_time));
        benchmark::DoNotOptimize(properties.find(mode));
    }
}
BENCHMARK(ReadProperties)->Name("property/three_reads/corv");
BENCHMARK(ReadMap)->Name("property/three_reads/plain");

}  // namespace
