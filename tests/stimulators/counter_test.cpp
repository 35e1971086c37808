#include "corv/stimulators/counter.h"

#include "corv/platform/cstring_array.h"
#include "corv/stimulus/formula_parser.h"
#include "corv/stimulus/stimulus.h"
#include "tests/stimulators/counter_formula.h"
#include "tests/support/test.h"

namespace corv::test {
namespace {

constexpr std::int64_t kMax = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kLastTime = 9'200'000'000'000'000'000;

class Counter : public testing::Test {
protected:
    Counter() { ResetCounters(); }
    ~Counter() override { ResetCounters(); }
};

int HandleCount() {
    int count = -1;
    while (FindCounter(++count)) {
    }
    return count;
}

// What a stimulus or a counter reference says, "-" for nothing.
template <class Source>
std::string ValueAt(const Source& source, std::int64_t time) {
    CString value("-");
    const int found = source.GetValue(time, value);
    EXPECT_EQ(found, value == "-" ? 0 : 1);
    return std::string(value);
}

// type | direction | width (0: whole value) | start | increment | reverse | values shown
const char* const kSequences = R"(
    1 | 1 | 4  | 14 | 1  | 0 | 14 15 0 1 2
    1 | 2 | 4  | 0  | 1  | 0 | 0 15 14
    1 | 7 | 4  | 1  | 3  | 0 | 1 14 11
    1 | 1 | 4  | 1  | 1  | 1 | 8 4 12 2 10
    1 | 1 | 3  | 9  | -1 | 0 | 1 0 7 6
    1 | 2 | 64 | 0  | 1  | 0 | 0 -1 -2
    1 | 1 | 64 | 1  | 1  | 1 | -9223372036854775808 4611686018427387904
    3 | 1 | 3  | 0  | 1  | 0 | 0 1 3 7 6 4 0 1
    3 | 2 | 3  | 0  | 1  | 0 | 0 4 6 7 3 1 0 4
    3 | 1 | 3  | 0  | 1  | 1 | 0 4 6 7 3 1 0
    4 | 1 | 4  | 0  | 1  | 0 | 1 2 4 8 1
    4 | 2 | 4  | 0  | 1  | 0 | 1 8 4 2 1
    4 | 1 | 4  | 12 | 1  | 0 | 12 8 1
    4 | 1 | 1  | 0  | 1  | 0 | 1 1 1
    5 | 1 | 4  | 0  | 1  | 0 | 14 13 11 7 14
    5 | 2 | 4  | 0  | 1  | 0 | 14 7 11 13 14
    5 | 1 | 4  | 5  | 1  | 0 | 5 11 7 14
    2 | 1 | 3  | 6  | 1  | 0 | 6 7 5 4 0 1 3 2 6
    2 | 2 | 3  | 6  | 1  | 0 | 6 2 3 1 0 4 5 7 6
    9 | 1 | 4  | 5  | 1  | 0 | 5 15 15
    5 | 1 | 3  | 7  | 1  | 0 | 7 5 3
    5 | 2 | 4  | 15 | 1  | 0 | 15 7 11
    5 | 1 | 64 | -1 | 1  | 0 | -1 -3 -5
    3 | 2 | 64 | 0  | 1  | 0 | 0 -9223372036854775808 -4611686018427387904
    4 | 2 | 64 | 2  | 1  | 0 | 2 1 -9223372036854775808 4611686018427387904
    5 | 1 | 64 | 9223372036854775807 | 1 | 0 | 9223372036854775807 -2 -3
    2 | 1 | 64 | -9223372036854775808 | 1 | 0 | -9223372036854775808 0 1
    1 | 2 | 0  | 0  | 1  | 0 | 0 -1 -2
    1 | 1 | 0  | 14 | 9  | 0 | 14 23 32
    1 | 1 | 0  | 1  | 1  | 1 | 2147483648 1073741824 3221225472
    1 | 2 | 0  | 0  | 1  | 1 | 0 4294967295 2147483647
    1 | 1 | 0  | 9223372036854775807 | 1 | 0 | 9223372036854775807 -9223372036854775808)";

TEST_F(Counter, WorkedSequences) {
    for (const auto& row : Table(kSequences)) {
        SCOPED_TRACE(testing::PrintToString(row));
        const bool whole = row[2] == "0";
        const std::string formula = CounterFormula(
            {static_cast<int>(Int(row[0])), static_cast<int>(Int(row[1])), 1, row[5] == "1",
             static_cast<std::uint64_t>(Int(row[3])), static_cast<std::uint64_t>(Int(row[4]))},
            "10");
        CCounterState counter;
        CStimulus stimulus;
        ASSERT_TRUE(
            counter.Init(formula.c_str(), whole ? 1 : static_cast<unsigned>(Int(row[2])), 1));
        ASSERT_TRUE(!whole || (counter.MakeWhole() && stimulus.Create(formula.c_str(), 0) == 1));
        const auto values = Split(row[6], ' ');
        for (std::size_t i = 0; i + 1 < values.size(); ++i) {
            const auto time = static_cast<std::int64_t>(10 * i);
            CString text;
            counter.NoteStartTime(time);
            EXPECT_TRUE(counter.BuildSegment(text));
            EXPECT_EQ(std::string(text), "10#" + values[i] + " @" + std::to_string(time) + ",10#" +
                                             values[i + 1] + " @" + std::to_string(time + 10));
            if (whole) {
                EXPECT_EQ(stimulus.GetNextEventTime(time), time + 10);
                EXPECT_EQ(ValueAt(stimulus, time), "10#" + values[i]);
                EXPECT_EQ(ValueAt(stimulus, time + 10), "10#" + values[i + 1]);
            }
        }
    }
}

// A four-bit counter from 0 with a period of 10. "L3@0": wire 3 is linked, starting at 0; "N3:9=10"
// its next event after 9 is at 10; "V3:9=1" its value at 9 is 1, "-" for none.
const char* const kScripts = R"(
    L3@0 N3:-1=0 N3:0=10 V3:0=0 V3:9=0 V3:10=1 V3:-1=- N3:10=20 V3:10=1 V3:9=- V3:20=0 V2:20=-
    L3@0 L2@0 N3:0=10 V3:10=1 V2:10=0 N2:10=20 V2:20=1 V3:20=0 V3:10=1
    L0@0 L3@30 N0:-1=30 N3:0=30 N3:30=40 V0:29=- V3:30=0 V3:40=1
    L3@30 L0@0 N0:-1=30
    L3@0 N3:0=10 L2@100 N3:9=10 N3:10=-1 N3:99=-1 V3:100=1 N2:99=-1 N3:100=110 V3:100=1 V3:110=0 V2:110=1
    L3@0 N3:0=10 L2@10 N3:9=10 N3:10=20
    L3@0 N3:0=10 L2@5 N3:9=10 N2:10=20 V2:19=0
    L3@-1 N3:-1=-1 V3:0=- L2@-9 N2:0=-1 L1@7 N3:-1=7 V3:17=1
    L3@0 N3:1000=-1 V3:1000=0 V3:1000=1 N3:19=20 N3:29=30 N3:30=40
    L3@0 V3:-1=- V3:0=0 V3:10=1
    L4@20 N4:-1=-1 V4:20=- L3@0 N3:-1=20 V3:20=0 L-1@50 N-1:0=-1 V-1:20=- N3:29=30
    L0@0 L1@0 L2@0 L3@0 N0:79=-1 N0:79=-1 N0:79=-1 N0:79=-1 N0:79=-1 N0:79=-1 N0:79=-1 N0:79=80 V0:80=1 V1:80=0)";

TEST_F(Counter, LinkingAndWalking) {
    for (const auto& row : Table(kScripts)) {
        SCOPED_TRACE(row[0]);
        ResetCounters();
        ASSERT_EQ(RegisterCounter(CounterFormula({}, "10").c_str(), 4, 1), 0);
        std::array<CStimulus, 6> wires;
        for (const std::string& step : Split(row[0], ' ')) {
            const std::int64_t wire = Int(step.substr(1));
            CStimulus& stimulus = wires.at(static_cast<std::size_t>(wire + 1));
            const std::int64_t time = Int(step.substr(step.find_first_of("@:") + 1));
            const std::string expected = step.substr(step.find('=') + 1);
            if (step[0] == 'L') {
                const std::string reference = CounterReference(static_cast<int>(wire), 0);
                ASSERT_EQ(stimulus.Create(reference.c_str(), time), 1);
            } else if (step[0] == 'N') {
                EXPECT_EQ(stimulus.GetNextEventTime(time), Int(expected)) << step;
            } else {
                EXPECT_EQ(ValueAt(stimulus, time), expected) << step;
            }
        }
    }
}

// reference | linked | wire | handle
TEST_F(Counter, References) {
    for (int handle = 0; handle < 2; ++handle) {
        ASSERT_EQ(RegisterCounter(CounterFormula({}, "10").c_str(), 4, 0), handle);
    }
    for (const auto& row : Table(R"(
        \counter\wire\2\handle\0 | 1 | 2 | 0 ;; \COUNTER\Wire\3\hAnDlE\1 | 1 | 3 | 1
        \\counter\\wire\\2\\\handle\\0\\ | 1 | 2 | 0 ;; \\counter\wire\2x\handle\ 1y | 1 | 2 | 1
        \counter\wire\x\handle\y | 1 | 0 | 0 ;; \counter\wire\99\handle\0 | 1 | 99 | 0
        \counter\wire\2\handle\2 | 0 ;; \counter\wire\2\handle\-1 | 0
        \counter\wire\2\handle\99999999999 | 0 ;; \counter\wire\2\handle | 0
        \counter\wire\2 | 0 ;; \counter\wire\\handle\0 | 0 ;; \counter\handle\0\wire\2 | 0
        \counter\wire\2\hand\0 | 0 ;; x\counter\wire\2\handle\0 | 0 ;; \counter | 0)")) {
        CCounterRef reference;
        EXPECT_EQ(reference.Init(row[0].c_str(), 0) ? 1 : 0, Int(row[1])) << row[0];
        EXPECT_EQ(CStimulus().Create(row[0].c_str(), 0), Int(row[1])) << row[0];
        if (row[1] == "1") {
            CString text;
            EXPECT_EQ(reference.wire, Int(row[2])) << row[0];
            EXPECT_EQ(reference.handle, Int(row[3])) << row[0];
            EXPECT_TRUE(reference.Format(text));
            EXPECT_EQ(std::string(text), CounterReference(reference.wire, reference.handle));
        }
    }
    EXPECT_EQ(HandleCount(), 2);
    CString text("old");
    CCounterRef unset[3];
    unset[0].wire = 1;
    unset[1].handle = 1;
    for (const CCounterRef& reference : unset) {
        EXPECT_FALSE(reference.Format(text));
        EXPECT_STREQ(text, "old");
        EXPECT_EQ(reference.GetNextEventTime(0), -1);
        EXPECT_EQ(ValueAt(reference, 0), "-");
    }
    EXPECT_FALSE(unset[2].Init(nullptr, 0));
    EXPECT_TRUE(unset[2].Init("counter\\wire\\3\\handle\\1", 0));
}

// key | values that no counter is made with
const char* const kBadSettings = R"(
    START  | zz;2.5;16#1;18446744073709551616;1x;--1;-
    INC    | zz;2.5;16#1;18446744073709551616;1x;--1;+
    RADIX  | 0;1;17;99;-10;x
    PERIOD | 0;0.4;999fs;0.9ps;-5;-5ns;x;5xs;ns;1e3;10 ns;9300000000000000000;99999999999hr;2556hr)";

TEST_F(Counter, RefusedSettingsTakeNoHandle) {
    const std::string good = CounterFormula({}, "10");
    std::vector<std::string> bad{"", "\\counter", good.substr(0, good.find("\\REV"))};
    for (const auto& row : Table(kBadSettings)) {
        const std::size_t at = good.find(row[0]) + row[0].size() + 1;
        for (const std::string& value : Split(row[1], ';')) {
            bad.push_back(good.substr(0, at) + value + good.substr(good.find('\\', at)));
        }
    }
    CStringArray list;
    CStimulus stimulus;
    list.Add("kept");
    for (const std::string& text : bad) {
        const char* formula = &text == &bad[0] ? nullptr : text.c_str();
        EXPECT_EQ(stimulus.Create(formula, 0), 0) << text;
        EXPECT_EQ(RegisterCounter(formula, 4, 1), -1) << text;
        EXPECT_EQ(RegisterWholeCounter(formula), -1) << text;
        EXPECT_EQ(CCounterFormulaParser().Run(formula, list, 4, 1), 0) << text;
        EXPECT_EQ(CFormulaParser().Run(formula, list, 4, 1), 0) << text;
    }
    EXPECT_EQ(list.GetSize(), 1);
    for (const int type : {-1, 0, 2, 3, 4, 5, 6}) {  // no whole values
        const std::string formula = CounterFormula({type}, "10");
        EXPECT_EQ(stimulus.Create(formula.c_str(), 0), 0) << formula;
        EXPECT_EQ(RegisterWholeCounter(formula.c_str()), -1) << formula;
    }
    EXPECT_EQ(HandleCount(), 0);
    for (int handle = 0; handle < 3; ++handle) {
        EXPECT_EQ(RegisterCounter(bad.back().c_str(), 4, 0), -1);
        EXPECT_EQ(RegisterCounter(good.c_str(), 4, 0), handle);
    }
}

TEST_F(Counter, Periods) {
    for (const auto& row : Table(R"(
        10 | 10 ;; 1 | 1 ;; 1.9 | 1 ;; 0.4ns | 400 ;; 1000fs | 1 ;; 1999fs | 1 ;; 1.5NS | 1500
        +7ps | 7 ;; 2555hr | 9198000000000000000)")) {
        CStimulus stimulus;
        ASSERT_EQ(stimulus.Create(CounterFormula({}, row[0]).c_str(), 0), 1) << row[0];
        EXPECT_EQ(stimulus.GetNextEventTime(0), Int(row[1])) << row[0];
    }
    // texts are read through buffers of 1000 and 1024 bytes
    const std::string formula = "\\counter\\TYPE\\1\\DIR\\1\\RADIX\\10\\START\\" +
                                std::string(1022, '0') + "15\\INC\\1\\PERIOD\\" +
                                std::string(998, '0') + "15\\REV\\0";
    CStimulus stimulus;
    ASSERT_EQ(stimulus.Create(formula.c_str(), 0), 1);
    EXPECT_EQ(stimulus.GetNextEventTime(0), 1);
    EXPECT_EQ(ValueAt(stimulus, 0), "10#1");
}

TEST_F(Counter, EndOfTime) {
    const auto formula = CounterFormula({}, "10");
    CStimulus stimulus;
    ASSERT_EQ(stimulus.Create(formula.c_str(), kLastTime - 10), 1);
    EXPECT_EQ(stimulus.GetNextEventTime(-1), kLastTime - 10);
    EXPECT_EQ(stimulus.GetNextEventTime(kLastTime - 10), kLastTime);
    EXPECT_EQ(ValueAt(stimulus, kLastTime), "10#1");
    EXPECT_EQ(stimulus.GetNextEventTime(kLastTime), -1);
    EXPECT_EQ(stimulus.GetNextEventTime(-1), -1);
    for (const std::int64_t start : {kMax, kMax - 9, kLastTime, kLastTime - 9}) {
        ASSERT_EQ(stimulus.Create(formula.c_str(), start), 1);
        for (const std::int64_t time : {-kMax - 1, start - 1, start, kMax}) {
            EXPECT_EQ(stimulus.GetNextEventTime(time), -1) << start;
            EXPECT_EQ(ValueAt(stimulus, time), "-") << start;
        }
    }
    ASSERT_EQ(stimulus.Create(formula.c_str(), -kMax - 1), 1);
    EXPECT_EQ(stimulus.GetNextEventTime(-kMax - 1), -1);
    CCounterState counter;
    CString text;
    ASSERT_TRUE(counter.Init(formula.c_str(), 4, 1));
    EXPECT_FALSE(counter.Advance());  // nothing is linked to it yet
    EXPECT_EQ(counter.GetNextEventTime(0, -1), -1);
    ASSERT_TRUE(counter.Init(formula.c_str(), 4, 1));
    counter.NoteStartTime(kLastTime);
    EXPECT_FALSE(counter.Advance());  // the value has moved on
    EXPECT_TRUE(counter.BuildSegment(text));
    EXPECT_STREQ(text, "10#1 @9200000000000000000,10#2 @9200000000000000010");
}

TEST_F(Counter, HandlesWidthsAndReset) {
    const std::string formula = CounterFormula({}, "10");
    EXPECT_EQ(FindCounter(-1), nullptr);
    CStringArray list;
    list.Add("kept");
    for (const int width : {0, -1, std::numeric_limits<int>::min(), kMaxVectorWidth + 1,
                            std::numeric_limits<int>::max()}) {
        EXPECT_EQ(CCounterFormulaParser().Run(formula.c_str(), list, width, 0), width < 1 ? 1 : 0);
    }
    EXPECT_EQ(list.GetSize(), 1);
    EXPECT_EQ(HandleCount(), 3);
    EXPECT_EQ(CCounterFormulaParser().Run(formula.c_str(), list, 2, 0), 1);  // appends
    EXPECT_EQ(CFormulaParser().Run((formula + "\\/custom a,b").c_str(), list, 1, 7), 1);
    ASSERT_EQ(list.GetSize(), 4);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(std::string(list[i]), i == 0 ? "kept" : CounterReference(i == 2, i < 3 ? 3 : 4));
    }
    std::array<CStimulus, 3> stimuli;  // of no wire, of a wire, of a whole value
    const std::string formulas[] = {CounterReference(0, 0), std::string(list[2]), formula};
    for (std::size_t i = 0; i < 3; ++i) {
        ASSERT_EQ(stimuli[i].Create(formulas[i].c_str(), 0), 1);
        EXPECT_EQ(stimuli[i].GetNextEventTime(-1), i == 0 ? -1 : 0);
        CString normal("old");
        stimuli[i].GenerateFormula(normal);
        EXPECT_STREQ(normal, "");
    }
    EXPECT_EQ(HandleCount(), 6);
    ResetCounters();
    EXPECT_EQ(HandleCount(), 0);
    for (CStimulus& old : stimuli) {
        EXPECT_EQ(old.GetNextEventTime(0), -1);
        EXPECT_EQ(ValueAt(old, 0), "-");
        EXPECT_EQ(old.Create("1 5", 0), 1);
        EXPECT_EQ(old.GetNextEventTime(-1), 5);
    }
    EXPECT_EQ(RegisterCounter(formula.c_str(), 4, 0), 0);
}

TEST_F(Counter, StateWithoutWiresAnswersNothing) {
    CCounterState state;
    CString text("old");
    for (int round = 0; round < 2; ++round) {
        state.NoteStartTime(0);
        EXPECT_EQ(state.GetValue(0, 0, text), 0);
        EXPECT_EQ(state.GetNextEventTime(0, 0), -1);
        EXPECT_FALSE(state.Advance());
        EXPECT_FALSE(state.BuildSegment(text));
        EXPECT_STREQ(text, "old");
        ASSERT_TRUE(state.Init(CounterFormula({4}, "10").c_str(), 0, 0));
    }
}

// Asks a counter when the program ends, before and after the registry has been emptied.
struct AskedAtExit {
    AskedAtExit() = default;
    AskedAtExit(const AskedAtExit&) = delete;
    AskedAtExit& operator=(const AskedAtExit&) = delete;
    ~AskedAtExit() {
        wire.GetNextEventTime(0);
        const std::string formula = CounterFormula({}, "10");
        if (wire.Create(formula.c_str(), 0) == 0 || wire.GetNextEventTime(0) != 10) {
            std::abort();
        }
    }
    CStimulus wire;
};
[[gnu::init_priority(101)]] AskedAtExit asked_last;
AskedAtExit asked_in_between;

TEST_F(Counter, LivesToTheEndOfTheProgram) {
    const std::string formula = CounterFormula({}, "10");
    static AskedAtExit asked_first;
    for (AskedAtExit* asked : {&asked_last, &asked_in_between, &asked_first}) {
        EXPECT_EQ(asked->wire.Create(formula.c_str(), 0), 1);
        EXPECT_EQ(asked->wire.GetNextEventTime(0), 10);
    }
}

TEST_F(Counter, OutOfMemory) {
    // texts too long for small buffers
    const std::string formula =
        CounterFormula({1, 1, 1, false, std::uint64_t{1} << 62}, "000000000000000000000000001000");
    const std::string reference = CounterReference(3, 0) + std::string(20, ' ');
    std::unique_ptr<CCounterState> state;
    CStringArray list;
    CStimulus stimulus;
    CString text;
    // with the number of handles after a failure and after a success
    const auto expect_failure = [&](int failure, int failed, int done, auto prepare, auto action) {
        FailEveryAllocation(
            [&] {
                ResetCounters();
                list.RemoveAll();
                text = CString("old");
                prepare();
            },
            action,
            [&](int result) {
                EXPECT_TRUE(result == failure && HandleCount() == failed && list.GetSize() == 0);
                EXPECT_STREQ(text, "old");
                EXPECT_NE(action(), failure);
            });
        EXPECT_EQ(HandleCount(), done);
    };
    const char* const counter = formula.c_str();
    const auto nothing = [] {};
    expect_failure(-1, 0, 1, nothing, [&] { return RegisterCounter(counter, 20, 1); });
    expect_failure(-1, 0, 1, nothing, [&] { return RegisterWholeCounter(counter); });
    expect_failure(0, 0, 1, nothing, [&] { return stimulus.Create(counter, 0); });
    expect_failure(0, 0, 1, nothing, [&] { return CFormulaParser().Run(counter, list, 20, 1); });
    expect_failure(0, 0, 1, nothing,
                   [&] { return CCounterFormulaParser().Run(counter, list, 20, 0); });
    const auto take_handle = [&] { ASSERT_EQ(RegisterCounter(counter, 4, 1), 0); };
    expect_failure(0, 1, 1, take_handle, [&] { return stimulus.Create(reference.c_str(), 0); });
    const auto make_whole = [&] { ASSERT_EQ(stimulus.Create(counter, 0), 1); };
    expect_failure(0, 1, 1, make_whole, [&] { return stimulus.GetValue(0, text); });
    EXPECT_STREQ(text, "10#4611686018427387904");
    const auto make_state = [&] {
        state = std::make_unique<CCounterState>();
        ASSERT_TRUE(state->Init(counter, 64, 1));
    };
    expect_failure(0, 0, 0, make_state, [&] { return state->BuildSegment(text) ? 1 : 0; });
    expect_failure(0, 0, 0, nothing, [&] { return CCounterRef{100, 100}.Format(text) ? 1 : 0; });
    EXPECT_STREQ(text, "\\counter\\wire\\100\\handle\\100");
}

}  // namespace
}  // namespace corv::test
