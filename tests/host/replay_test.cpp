#include "host/replay.h"

#include <unistd.h>

#include "corv/stimulus/stimulus.h"
#include "corv/stremo/streams.h"
#include "corv/typeinfo/type_info.h"
#include "host/convert.h"
#include "host/recording.h"
#include "host/signal_name.h"
#include "host/signal_trace.h"
#include "host/value_type.h"
#include "tests/support/recorded.h"
#include "tests/support/test.h"

namespace corv::host {
namespace {

constexpr std::int64_t kEnd = 1'000'000'000'000'000'000;  // later than any sample

std::string FullName(ISignal& signal) {
    std::array<char, 512> name{};
    signal.GetFullName(name.data(), name.size());
    return name.data();
}

// What a recording holds, read event by event with every signal of interest.
class Recorded {
public:
    explicit Recorded(const std::string& file) : all_(*OpenStream(file).reader) {
        EXPECT_TRUE(all_.is_sound);
    }

    // The times of the events of some leaves, and the text that one has at a time.
    std::set<std::int64_t> Times(const std::vector<ISignal*>& leaves) const {
        std::set<std::int64_t> times;
        for (ISignal* const leaf : leaves) {
            for (const auto& [time, value] : Of(*leaf).events) {
                times.insert(time);
            }
        }
        return times;
    }
    // The last value at or before the time; there is none before the first event.
    std::string Text(ISignal& leaf, std::int64_t time) const {
        const test::RecordedSignal& signal = Of(leaf);
        std::optional<std::uint64_t> last;
        for (const auto& [at, value] : signal.events) {
            last = at <= time ? value : last;
        }
        return last ? std::string(WithoutQuotes(signal.Text(*last, 0)))
                    : std::string(1, kNotDriven);
    }
    std::string Joined(const std::vector<ISignal*>& leaves, std::int64_t time) const {
        std::string joined;
        for (ISignal* const leaf : leaves) {
            joined += (joined.empty() ? "" : std::string(1, kBetweenWords)) + Text(*leaf, time);
        }
        return joined;
    }

private:
    const test::RecordedSignal& Of(ISignal& leaf) const {
        return *std::find_if(all_.signals.begin(), all_.signals.end(),
                             [&](const test::RecordedSignal& signal) {
                                 return !signal.info.composite && signal.handle == leaf.GetHandle();
                             });
    }
    test::Recorded all_;
};

// The questions that are worth asking: at each event, just before it and just behind it.
void ExpectReplayed(Source& source, const Recorded& recorded, const std::vector<ISignal*>& leaves,
                    const std::string& name) {
    std::int64_t before = -1;
    for (const std::int64_t time : recorded.Times(leaves)) {
        ASSERT_EQ(source.NextEvent(before), time) << name << " after " << before;
        for (const std::int64_t at : {time - 1, time, time + 1}) {
            const auto value = source.ValueAt(at);
            const std::string expected = recorded.Joined(leaves, at);
            const bool driven = expected.find_first_not_of(
                                    std::string{kNotDriven, kBetweenWords}) != std::string::npos;
            ASSERT_EQ(value ? WithoutQuotes(*value) : "nothing", driven ? expected : "nothing")
                << name << " at " << at;
        }
        before = time;
    }
    EXPECT_EQ(source.NextEvent(before), -1) << name;
}

class ReplayOfSamples : public testing::TestWithParam<const char*> {
protected:
    static std::string Sample() { return test::TestFolder() + "/data/" + GetParam(); }
};

// Every signal of every kind, in the recording's own format and from an event file: as a whole,
// where all elements read the one recording, and through the formulas of its elements.
TEST_P(ReplayOfSamples, EqualsTheRecording) {
    const std::string converted = testing::TempDir() + std::to_string(getpid()) + "replayed.evt";
    {
        const Recording recording(Sample());
        std::vector<NamedSignal> all;
        ISignal* signal = nullptr;
        for (std::uint32_t i = 0; SUCCEEDED(recording.Signals().GetAt(i, &signal)); ++i) {
            all.push_back({FullName(*signal), signal, {}});
        }
        WriteEventFile(recording, all, converted, {});
    }
    std::size_t compared = 0;
    for (const std::string& file : {Sample(), converted}) {
        const Recorded recorded(file);
        const Recording recording(file);
        ISignal* signal = nullptr;
        for (std::uint32_t i = 0; SUCCEEDED(recording.Signals().GetAt(i, &signal)); ++i) {
            const std::string name = FullName(*signal);
            const std::vector<ISignal*> leaves = LeavesOf(*signal);
            const Replay replay = MakeReplay(file, name, 0);
            EXPECT_EQ(replay.type, signal->GetTypeInfo());
            ExpectReplayed(*replay.source, recorded, leaves, file + ":" + name);
            compared += recorded.Times(leaves).size();
        }
    }
    EXPECT_GT(compared, 20U);
    std::remove(converted.c_str());
}

// Formulas of several signals of one reader, each of which is told what the others are.
TEST_P(ReplayOfSamples, EqualsItThroughFormulasOnOneReader) {
    const Recorded recorded(Sample());
    const Recording recording(Sample());
    stremo::RegisterStream("replay:test",
                           [&] { return ShareStream(recording.Reader()).release(); });
    std::vector<std::pair<ISignal*, std::unique_ptr<CStimulus>>> stimuli;
    ISignal* signal = nullptr;
    for (std::uint32_t i = 0; SUCCEEDED(recording.Signals().GetAt(i, &signal)); ++i) {
        for (ISignal* const leaf : LeavesOf(*signal)) {
            stimuli.emplace_back(leaf, std::make_unique<CStimulus>());
            const std::string formula = "/custom replay:test," + FullName(*leaf);
            ASSERT_EQ(stimuli.back().second->Create(formula.c_str(), 0), 1) << formula;
            // some are asked before the next one is made, so that the file is read in between
            EXPECT_EQ(i % 3 == 1 ? stimuli.back().second->GetNextEventTime(kEnd) : -1, -1);
        }
    }
    for (const auto& [leaf, stimulus] : stimuli) {
        std::int64_t before = -1;
        for (const std::int64_t time : recorded.Times({leaf})) {
            ASSERT_EQ(stimulus->GetNextEventTime(before), time) << FullName(*leaf);
            CString value;
            const std::string expected = recorded.Text(*leaf, time);
            ASSERT_EQ(stimulus->GetValue(time, value), expected.empty() ? 0 : 1);
            EXPECT_EQ(WithoutQuotes(value.View()), expected) << FullName(*leaf);
            before = time;
        }
        EXPECT_EQ(stimulus->GetNextEventTime(before), -1) << FullName(*leaf);
    }
    stremo::UnregisterStream("replay:test");
}

// Names that differ in case or look like elements, and parts of vectors.
TEST(Replay, TakesTheSignalThatIsNamed) {
    const std::string file = testing::TempDir() + std::to_string(getpid()) + "replay names.vcd";
    std::ofstream(file)
        << "$timescale 1 ns $end $scope module t $end $var wire 1 ! clk $end\n"
           "$var wire 1 \" CLK $end $var wire 4 # a [3:0] $end $var wire 1 % a(3) "
           "$end\n$var wire 1 & \\e.s+c $end $upscope $end $enddefinitions $end\n#0 "
           "b0101 # 0! 1\" 1% 1&\n#7 1! b1010 #\n#9 0\"\n";
    struct Row {
        const char* name;
        std::int64_t change;  // after time 0
        const char* value;    // at time 0
    };
    for (const Row& row : {Row{"t.clk", 7000, "0"},
                           {"t/clk", 7000, "0"},
                           {"t.a", 7000,
                            "0\x1f"
                            "1\x1f"
                            "0\x1f"
                            "1"},
                           {"t.CLK", 9000, "1"},
                           {"T/CLK", 7000, "0"},
                           {"t.a(2)", 7000, "1"},
                           {"t.a(2 downto 1)", 7000,
                            "1\x1f"
                            "0"},
                           {"t.a[1:0]", 7000,
                            "0\x1f"
                            "1"},
                           {"t.a(3)", -1, "1"},
                           {"t.\\e.s+c", -1, "1"}}) {
        const Replay replay = MakeReplay(file, row.name, 0);
        EXPECT_EQ(replay.source->ValueAt(0).value_or(""), row.value) << row.name;
        EXPECT_EQ(replay.source->NextEvent(0), row.change) << row.name;
    }
    const auto error = [&](const char* name) {
        try {
            MakeReplay(file, name, 0);
        } catch (const std::runtime_error& problem) {
            return std::string(problem.what());
        }
        return std::string("none");
    };
    EXPECT_NE(error("t.*").find("name one signal, such as `t.clk`"), std::string::npos);
    EXPECT_NE(error("t.b").find("has no signal `t.b`"), std::string::npos);
    std::remove(file.c_str());
}

INSTANTIATE_TEST_SUITE_P(Simulators, ReplayOfSamples,
                         testing::Values("ghw/tb_composite.ghw", "ghw/tb_delta.ghw",
                                         "ghw/tb_hier.ghw", "ghw/tb_scalars.ghw",
                                         "vcd/tb_composite.vcd", "vcd/tb_delta.vcd",
                                         "vcd/tb_hier.vcd", "vcd/tb_scalars.vcd",
                                         "vcd/tb_verilog.vcd"));

}  // namespace
}  // namespace corv::host
