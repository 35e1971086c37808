#include "corv/cpp/signal.h"

#include "tests/cpp/support.h"
#include "tests/support/test.h"

namespace corv::test {
namespace {

TEST(CppWave, AnswersAsTheWaveBelowDoes) {
    for (const std::uint32_t size : {4U, 8U}) {
        Wave wave(size);
        for (const std::int64_t time : {0, 3, 3, 90}) {
            wave.Add(time, 0x1'0000'0000U + static_cast<std::uint64_t>(time));
        }
        ASSERT_EQ(wave.Count(), 3U);
        for (std::int64_t time = -1; time < 95; ++time) {
            for (const EFindMode mode : {FindAt, FindBefore, FindAfter, FindAtOrBefore}) {
                IWaveEvent* event = nullptr;
                const bool found = SUCCEEDED(wave.Get().FindEvent(time, mode, &event));
                const std::optional<WaveEvent> answer = wave.Find(time, mode);
                ASSERT_EQ(answer.has_value(), found);
                EXPECT_EQ(found ? event->GetTime() : -1, found ? answer->time : -1);
            }
        }
        const std::uint64_t high = size == 8 ? 0x1'0000'0000U : 0;
        EXPECT_EQ(List(wave.Events(1, 90)),
                  (std::vector<WaveEvent>{{3, high + 3, 0}, {90, high + 90, 0}}));
        EXPECT_EQ(Thrown([&] { wave.Add(89, 0); }), "events must be added in order of time");
        wave.Clear();
        EXPECT_EQ(Thrown([&] { wave.Add(-1, 0); }), "events must be added in order of time");
        EXPECT_TRUE(List(wave.Events()).empty());
    }
    EXPECT_EQ(Thrown([] { Wave(2); }), "a value of a wave has 4 or 8 bytes");
}

TEST(CppSignal, KeepsValuesOfArraysByElement) {
    Signal grid("grid", Type("array (0 to 1) of bit_vector(2 downto 0)"));
    Signal row = grid.Members().at(1);
    EXPECT_EQ(row.FullName(), "grid(1)");
    row.Add(5, "O\"6\"");
    grid.Members().at(0).Add(7, "001");
    EXPECT_EQ(row.Leaves().at(2).FullName(), "grid(1)(0)");
    EXPECT_EQ(row.Leaves().at(1).ValueAt(5), "1");
    EXPECT_EQ(row.ValueAt(5), "110");
    EXPECT_EQ(row.ValueAt(4), std::nullopt);
    EXPECT_EQ(List(grid.Events()), (std::vector<Event>{{5, "(,110)"}, {7, "(001,110)"}}));
    EXPECT_EQ(grid.GetType().Vhdl(), "array (0 to 1) of bit_vector(2 downto 0)");
}

TEST(CppSignal, DoesWhatAStimulusDoes) {
    const Stimulus stimulus("0000 0, 01XZ 10, 1111 20 -r 30");
    Signal bus("bus", Type("std_logic_vector(3 downto 0)"));
    bus.Add(stimulus, 15, 50);
    EXPECT_EQ(
        List(bus.Events()),
        (std::vector<Event>{{15, "01XZ"}, {20, "1111"}, {30, "0000"}, {40, "01XZ"}, {50, "1111"}}));
    EXPECT_EQ(List(bus.Events(16, 49)), List(stimulus.Events(16, 49)));
}

TEST(CppSignal, LivesAsLongAsAMember) {
    std::optional<Signal> whole(std::in_place, "r", Type("record a : bit; end record"));
    Signal member = whole->Members().at(0);
    Wave wave = member.GetWave();
    whole.reset();
    member.Add(1, "1");
    EXPECT_EQ(member.FullName(), "r.a");
    member = Signal("other", Type("bit"));
    EXPECT_EQ(wave.Count(), 1U);
}

TEST(CppSignal, SaysWhatIsWrong) {
    EXPECT_EQ(Thrown([] { Signal("s", Type("bit_vector")); }), "a signal cannot have this type");
    Signal bus("bus", Type("bit_vector(1 downto 0)"));
    EXPECT_EQ(Thrown([&] { bus.Add(0, "0X"); }), "`0X` is not a value of the type");
    EXPECT_EQ(Thrown([&] { bus.GetWave(); }), "`bus` has no wave; its members have");
    bus.Leaves().at(1).Add(5, "1");
    EXPECT_EQ(Thrown([&] { bus.Add(4, "00"); }), "events must be added in order of time");
    EXPECT_EQ(bus.Leaves().at(0).GetWave().Count(), 0U) << "all or nothing";
    Signal record("r", Type("record a : bit; end record"));
    EXPECT_EQ(Thrown([&] { record.Add(0, "1"); }), "`1` is not a value of the type");
}

}  // namespace
}  // namespace corv::test
