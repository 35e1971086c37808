#include "host/driver.h"

#include "host/named_formula.h"
#include "tests/support/test.h"

namespace corv::host {
namespace {

StimulusSource Make(const std::string& formula) {
    auto stimulus = std::make_unique<CStimulus>();
    EXPECT_EQ(stimulus->Create(formula.c_str(), 0), 1) << formula;
    return StimulusSource(std::move(stimulus));
}

TEST(Driver, ListsEveryEventOfTheWindow) {
    StimulusSource source = Make("0 0, 1 10, 0 20 -r 40, X @45");
    const auto list = [&](TimeWindow window, std::size_t max) {
        const Trace trace = RecordEvents(source, window, max);
        std::string text = trace.before.value_or("none") + ":";
        for (const Change& change : trace.changes) {
            text += " " + std::to_string(change.time) + "=" + change.value;
        }
        return text + (trace.truncated ? " ..." : "");
    };
    EXPECT_EQ(list({0, 50}, 99), "none: 0=0 10=1 20=0 40=0 45=X 50=1");
    EXPECT_EQ(list({10, 45}, 99), "0: 10=1 20=0 40=0 45=X");
    EXPECT_EQ(list({11, 50}, 3), "1: 20=0 40=0 45=X ...");
    EXPECT_EQ(list({11, 45}, 3), "1: 20=0 40=0 45=X");
}

TEST(Driver, ADrawingCostsItsColumns) {
    StimulusSource source = Make("0 0, 1 1 -r 2, X @500000000000");
    const TimeGrid grid({0, 1000000000000}, 100);
    const Trace trace = RecordForGrid(source, grid);
    EXPECT_LT(trace.changes.size(), 1000U);
    ASSERT_EQ(trace.crowded.size(), 100U);
    EXPECT_EQ(trace.crowded[7].start, grid.First(7));
    EXPECT_EQ(trace.crowded[7].end, grid.First(8));
}

TEST(Driver, ChoosesAnEnd) {
    const auto rows = test::Table(R"(0 0, 1 8000|0|9000 ;; 0 0, 1 8000|4000|8500 ;; 0 0|0|1000
        1 500|0|562 ;; 0 0, 1 30 -r 100|0|200 ;; 0 0, 1 30 -r 100|1000|1200
        0 50, 1 80 -r 100|0|250 ;; 0 0 -r 100, 1 @8000|0|9000 ;; 1 @80|0|90 ;; 0 0, 1 5|9000|10000
        0 0, 1 2|0|3)");
    for (const auto& row : rows) {
        EXPECT_EQ(Make(row[0]).NaturalEnd(test::Int(row[1])), test::Int(row[2])) << row[0];
    }
    EXPECT_EQ(Make("0 0, 1 9000000000000000000 -r 9000000000000000000").NaturalEnd(0),
              std::numeric_limits<std::int64_t>::max());
}

TEST(NamedFormula, SplitsAtTheNamesEqualsSign) {
    const auto rows = test::Table(R"(clk=0 0|clk|0 0 ;; 0 0|f3|0 0 ;; =a=b|f3|a=b ;; a(3)=Z|a(3)|Z
        top.u1/q=0|top.u1/q|0 ;; '=' 0|f3|'=' 0 ;; 0 0, = 5|f3|0 0, = 5 ;; a b=0|f3|a b=0
        \a b\=0 0|\a b\|0 0 ;; \a\.\b =\=1|\a\.\b =\|1 ;; \counter a=1|f3|\counter a=1 ;; _|f3|_)");
    for (const auto& row : rows) {
        const NamedFormula split = SplitNamedFormula(row[0], 3);
        EXPECT_EQ(split.name, row[1]);
        EXPECT_EQ(split.formula, row[2]);
    }
}

}  // namespace
}  // namespace corv::host
