// Every request for memory fails once: the operation gives its failure, and the object still works.

#include "corv/corv.h"

#include "tests/support/test.h"

namespace corv::test {
namespace {

const std::string kLongValue = "\"" + std::string(60, 'Z') + "\"";

// Enough elements, relative and absolute, for the sorted index.
std::string LongFormula() {
    std::string formula = "0 0, ";
    for (int i = 0; i < 300; ++i) {
        formula += kLongValue + (i % 3 == 0 ? " @" : " ") + std::to_string(i * 10) + ", ";
    }
    return formula + "1 4000 -r 5000";
}

TEST(Allocation, Create) {
    for (const std::string& formula : {kLongValue + " 0, " + kLongValue + " 10 -r 40",
                                       LongFormula(), std::string("/vesk (0([1F]5)7X12)8/CLK")}) {
        CStimulus stimulus;
        const auto create = [&] { return stimulus.Create(formula.c_str(), 0); };
        FailEveryAllocation([] {}, create,
                            [&](int result) {
                                ASSERT_EQ(result, 0);
                                ASSERT_EQ(stimulus.Create("0 0, 1 10 -r 40", 0), 1);
                                ASSERT_EQ(stimulus.GetNextEventTime(10), 40);
                            });
        EXPECT_EQ(stimulus.GetNextEventTime(-1), 0);  // the run that was granted everything
    }
}

// A question needs no memory, but for the text of a long value.
TEST(Allocation, Questions) {
    CStimulus stimulus;
    ASSERT_EQ(stimulus.Create(LongFormula().c_str(), 0), 1);
    ArmFailingAlloc(1, true);
    const std::int64_t next = stimulus.GetNextEventTime(25);
    EXPECT_FALSE(DisarmFailingAlloc());
    EXPECT_EQ(next, 30);
    std::optional<CString> value;
    const auto get = [&] { return stimulus.GetValue(25, *value); };
    FailsUnchanged([&] { value.emplace("left alone"); }, get, 0, [&] { return *value; });
    EXPECT_STREQ(*value, kLongValue.c_str());
}

TEST(Allocation, CheckFormula) {
    const std::string formula = "0 0, " + kLongValue + " 10xs, x 5zz, y, 1 @5 -r 0, (z";
    const std::size_t expected = CheckFormula(formula.c_str()).size();
    ASSERT_GT(expected, 3U);
    const auto check = [&] { return CheckFormula(formula.c_str()); };
    FailEveryAllocation([] {}, check,
                        [&](const std::vector<Problem>& problems) {
                            EXPECT_TRUE(problems.empty() ||  // no memory for the list itself
                                        problems.size() == expected ||
                                        problems.back().sentence == "out of memory");
                        });
    ArmFailingAlloc(5, false);
    EXPECT_EQ(check().back().sentence, "out of memory");
    EXPECT_TRUE(DisarmFailingAlloc());
}

// Operations that write a text give an empty one, and work the next time.
TEST(Allocation, TextsWritten) {
    CStimulus stimulus;
    CSimpleStimulus element;
    CClock clock;
    clock.SetRateOffset(1'000'000'000'000);
    ASSERT_EQ(stimulus.Create(LongFormula().c_str(), 0), 1);
    ASSERT_EQ(element.Create(kLongValue.c_str(), {5, 2, 1}, 1), 1);
    const auto expect = [](auto write) {
        CString text;
        FailsLeaving([&] { text = "old"; }, [&] { return write(text); }, 0, [&] { return text; },
                     "");
        EXPECT_GT(text.GetLength(), 15);
    };
    expect([&](CString& out) { return stimulus.GenerateFormula(out), 0; });
    expect([&](CString& out) { return element.GenerateFormula(out), 0; });
    expect([&](CString& out) { return clock.StreamOut(out), 0; });
    expect([&](CString& out) { return clock.GenerateFormula(out, 1, nullptr) ? 0 : 1; });
    expect([](CString& out) { return c_decConverter().MakeBin(5, 200, out); });
}

TEST(Allocation, WordsTaken) {
    const std::string whole = "(" + std::string(40, 'a') + "," + std::string(40, 'b') + "), c";
    const auto expect = [&](auto take) {
        CString source;
        FailsUnchanged([&] { source = whole.c_str(); }, [&] { return take(source); }, CString(),
                       [&] { return source; });
    };
    expect([](CString& source) { return NextToken(source, ",", "(", ")", " "); });
    expect([](CString& source) { return NextWord(source, "(", ")", " "); });
    expect([](CString& source) { return GetBracedWord(source, ",", "(", ")"); });
    expect([](CString& source) { return _GetBracedWord(source, ",", "(", ")"); });
}

}  // namespace
}  // namespace corv::test
