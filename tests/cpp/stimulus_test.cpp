#include "corv/cpp/stimulus.h"

#include <ranges>

#include "tests/cpp/support.h"
#include "tests/support/test.h"

namespace corv::test {
namespace {

using View = decltype(Stimulus("0 0").Events());
static_assert(std::ranges::forward_range<const View> && std::ranges::view<View>);

// The events as the C-style operations list them.
std::vector<Event> ListedEvents(CStimulus& stimulus, std::int64_t from, std::int64_t to) {
    std::vector<Event> events;
    for (auto time = stimulus.GetNextEventTime(from - 1); time != -1 && time <= to;
         time = stimulus.GetNextEventTime(time)) {
        CString value;
        stimulus.GetValue(time, value);
        events.push_back({time, std::string(value.View())});
    }
    return events;
}

TEST(CppStimulus, AnswersAsTheStimulusBelowDoes) {
    for (const char* const formula : {"0 0, 1 10, 0 20 -r 40", "'1' 0, '0' 35ns", "U 5, 1 @1.5us",
                                      "\"01XZ\" 0, \"1111\" 5ns", "/vesk (010NS110NS)3/CLK"}) {
        for (const std::int64_t start : {0, 7}) {
            SCOPED_TRACE(formula);
            CStimulus model;
            ASSERT_EQ(model.Create(formula, start), 1);
            const Stimulus stimulus(formula, start);
            for (const auto& [from, to] : {std::pair(0, 100), {1, 20}, {20, 20}, {21, 20}}) {
                EXPECT_EQ(List(stimulus.Events(from, to)), ListedEvents(model, from, to))
                    << from << " " << to;
            }
            for (const std::int64_t time : {-1, 0, 6, 7, 40, 2'000'000}) {
                CString value;
                const bool has = model.GetValue(time, value) != 0;
                EXPECT_EQ(stimulus.ValueAt(time).value_or("none"), has ? value.View() : "none");
                EXPECT_EQ(stimulus.NextEvent(time).value_or(-1), model.GetNextEventTime(time));
            }
            CString normal;
            model.GenerateFormula(normal);
            EXPECT_EQ(stimulus.Formula(), normal.View());
        }
    }
}

TEST(CppStimulus, MakesClocks) {
    const Stimulus clock = Stimulus::Clock(15, 100);
    EXPECT_EQ(ListedEvents(clock.Get(), 0, 130),
              (std::vector<Event>{{100, "0"}, {107, "1"}, {115, "0"}, {122, "1"}, {130, "0"}}));
    EXPECT_THROW(Stimulus::Clock(1), Error);
}

TEST(CppStimulus, SaysWhereAFormulaIsWrong) {
    // formula | position | length | sentence
    const auto rows = Table(R"(
        0 0, 1 10xs   | 9 | 2  | unknown unit `xs`; did you mean `ns`?
        0 0, 1 @1e3   | 9 | 2  | _
        0 0, 1 -5     | 7 | 2  | _
        _             | 0 | 0  | _
    )");
    for (const auto& row : rows) {
        try {
            Stimulus stimulus(row[0]);
            ADD_FAILURE() << row[0] << " is taken";
        } catch (const Error& error) {
            EXPECT_EQ(error.Position(), Int(row[1])) << row[0];
            EXPECT_EQ(error.Length(), Int(row[2])) << row[0];
            const auto problems = CheckFormula(row[0].c_str());
            EXPECT_EQ(error.what(), row[3].empty() ? problems.at(0).sentence : row[3]);
        }
    }
}

}  // namespace
}  // namespace corv::test
