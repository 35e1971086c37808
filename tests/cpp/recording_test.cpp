#include "corv/cpp/recording.h"

#include "corv/cpp/save_signals.h"
#include "tests/cpp/support.h"
#include "tests/support/other_programs.h"
#include "tests/support/test.h"

namespace corv::test {
namespace {

std::string DataFile(const std::string& name) {
    return TestFolder() + "/data/" + name;
}

// What a reader says without anything in between: the events by handle, of several at one time the
// last.
std::map<int, std::map<std::int64_t, std::uint64_t>> EventsByHandle(const std::string& file) {
    const std::unique_ptr<stremo::IEventsStreamRead> reader(stremo::CreateStreamRead(file.c_str()));
    std::map<int, std::map<std::int64_t, std::uint64_t>> events;
    const std::int64_t start = 0;
    reader->Seek(&start);
    for (int handle = reader->Next(); handle != -1; handle = reader->Next()) {
        std::uint64_t value[2] = {};
        reader->ReadValue(value);
        events[handle][*reader->GetCurrentTime()] = value[0];
    }
    return events;
}

TEST(CppRecording, HasTheEventsThatTheReaderHas) {
    for (const char* const name : {"ghw/tb_composite.ghw", "ghw/tb_hier.ghw", "vcd/tb_verilog.vcd",
                                   "vcd/tb_scalars.vcd", "ghw/tb_delta.ghw"}) {
        SCOPED_TRACE(name);
        auto events = EventsByHandle(DataFile(name));
        const Recording run(DataFile(name));
        run.Load(run.Signals());
        std::size_t leaves = 0;
        for (const Signal& signal : run.Signals()) {
            for (const Signal& leaf : signal.Leaves()) {
                const auto& expected = events[leaf.Get().GetHandle()];
                EXPECT_EQ(leaf.GetWave().Count(), expected.size()) << leaf.FullName();
                for (const WaveEvent& event : leaf.GetWave().Events()) {
                    const auto found = expected.find(event.time);
                    ASSERT_NE(found, expected.end());
                    EXPECT_EQ(event.value, found->second);
                }
                ++leaves;
            }
        }
        EXPECT_GE(leaves, 5U);
    }
}

TEST(CppRecording, LoadsAWindow) {
    const Recording run(DataFile("ghw/tb_hier.ghw"));
    const Signal bus = run.Find("tb_hier.blk.direct.q");
    const std::vector<Event> all = List(run.Events(bus));
    ASSERT_GT(all.size(), 3U);
    const std::int64_t from = all[1].time + 1;
    const std::int64_t to = all.back().time;
    const std::vector<Event> some = List(run.Events("tb_hier/blk/direct/q", from, to));
    EXPECT_EQ(some, std::vector<Event>(all.begin() + 2, all.end()));
    EXPECT_EQ(bus.ValueAt(from), all[1].value);
    EXPECT_EQ((*bus.Events().begin()).time, from - 1);
    EXPECT_EQ(List(run.Events(bus, 0, all[1].time)),
              std::vector<Event>(all.begin(), all.begin() + 2));
    EXPECT_GE(run.End(), to);
}

TEST(CppRecording, FindsSignals) {
    const Recording run(DataFile("ghw/tb_hier.ghw"));
    const auto rows = Table(R"(
        tb_hier.clk            | tb_hier\clk
        TB_HIER/gen(0)/u.d     | tb_hier\gen(0)\u\d
        tb_hier\gen(0)\u\d(2)  | tb_hier\gen(0)\u\d(2)
        tb_hier.clk.x          | _
        tb_hier                | _
        _                      | _
    )");
    for (const auto& row : rows) {
        if (row[1].empty()) {
            EXPECT_EQ(Thrown([&] { run.Find(row[0]); }), "there is no signal `" + row[0] + "`");
        } else {
            EXPECT_EQ(run.Find(row[0]).FullName(), row[1]);
        }
    }
}

TEST(CppRecording, StaysOpenForItsSignals) {
    std::optional<Recording> run(std::in_place, DataFile("vcd/tb_verilog.vcd"));
    const Recording copy = *run;
    const Signal signal = copy.Signals().at(0);
    run.reset();
    EXPECT_FALSE(List(copy.Events(signal)).empty());
    EXPECT_EQ(copy.Format(), copy.Reader().GetFormatName());
}

// All kinds of signals written, read and written again.
TEST(CppRecording, TakesSignalsThereAndBack) {
    const TemporaryFolder folder;
    Signal record("top\\r", Type("record a : bit_vector(1 to 2); b : integer; end record"));
    record.Members().at(0).Add(Stimulus("01 0, 10 7 -r 20"), 0, 60);
    record.Members().at(1).Add(4, "-12");
    Signal clock("top\\clk", Type("std_logic"));
    clock.Add(Stimulus::Clock(10), 0, 60);
    Signal alias("alias", Type("std_logic"));
    alias.Get().SetWave(&clock.GetWave().Get());
    const std::vector<Signal> saved{record, clock, alias};
    SaveSignals(folder.Path("run.evt"), saved);

    const Recording run(folder.Path("run.evt"));
    EventFileOptions part;
    part.end = 20;
    run.WriteEventFile(folder.Path("part.evt"), part);
    run.WriteVcd(folder.Path("run.vcd"));
    const Recording cut(folder.Path("part.evt"));
    ASSERT_EQ(run.Signals().size(), saved.size());
    for (std::size_t i = 0; i < saved.size(); ++i) {
        const Signal signal = run.Signals()[i];
        EXPECT_EQ(signal.Name(), saved[i].Name());
        EXPECT_EQ(signal.GetType().Description(), saved[i].GetType().Description());
        EXPECT_EQ(List(run.Events(signal)), List(saved[i].Events()));
        EXPECT_EQ(List(cut.Events(cut.Signals()[i])), List(saved[i].Events(0, 20)));
    }
    EXPECT_EQ(run.Signals()[2].Get().GetHandle(), run.Signals()[1].Get().GetHandle());
    EXPECT_EQ(List(Recording(folder.Path("run.vcd")).Events("top.clk")), List(clock.Events()));
}

TEST(CppRecording, SaysWhatIsWrong) {
    const std::string file = DataFile("vcd/tb_verilog.vcd");
    const Recording run(file);
    EXPECT_EQ(Thrown([] { Recording("no.vcd"); }), "no.vcd: there is no such file");
    EXPECT_EQ(Thrown([&] { Recording(OpenGhwRecording(file.c_str(), 0)); }),
              file + ": it is no GHW file");
    EXPECT_EQ(Thrown([&] { run.WriteVcd("/no/such/folder/x.vcd"); }), LastStreamError());
    EXPECT_NE(Thrown([&] { run.WriteEventFile("/no/such/folder/x.evt"); }), "");
    EXPECT_NE(Thrown([&] { SaveSignals("/no/such/folder/x.evt", {}); }), "");
}

}  // namespace
}  // namespace corv::test
