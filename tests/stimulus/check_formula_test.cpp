#include "corv/stimulus/check_formula.h"

#include <gtest/gtest.h>

#include <string>

#include "corv/stimulus/stimulus.h"
#include "tests/support/table.h"

namespace corv::test {
namespace {

// formula | position | length | Error or Warning | what the sentence names
const char* const kTable = R"(
_                              | 0  | 0  | E | _
-r 40                          | 0  | 5  | E | _
,0 0                           | 0  | 1  | E | comma
0 0, 1 10xs                    | 9  | 2  | E | `xs`; did you mean `ns`?
0 0, 1 @1e3                    | 9  | 2  | E | `e3`
0 0, 1 abc                     | 7  | 3  | E | `abc`
0 0 -r abc                     | 7  | 3  | E | `abc`
0 0, 1 @                       | 7  | 1  | E | @
0 0, 1 5ns us                  | 7  | 6  | E | 5ns
0 0, 1 9300000000000000000     | 7  | 19 | E | 9300000000000000000
0 0, 1 -5                      | 7  | 2  | E | `-5`
0 @-5                          | 2  | 3  | E | `@-5`
0 @-5ns -r 4                   | 2  | 5  | E | `@-5ns`
x 0 y, 1 10                    | 4  | 1  | W | `y`
x 0, 'y y', 1 10               | 5  | 5  | W | `'y y'`
x 0 y , 1 10                   | 4  | 5  | E | `y`
0 0, (a, (b) 1                 | 5  | 1  | E | `(`
0 0, 'a 1                      | 5  | 1  | E | `'`
0 0, 1 10 -r 0                 | 10 | 4  | E | 0
0 0, 1 10 -r 0 ns              | 10 | 7  | E | 0
0 0, 1 10 -r                   | 10 | 2  | E | -r
0 0, 1 10 -r -40               | 10 | 6  | E | 40 ps
0 0, 1 10, 0 20 -r 15          | 16 | 5  | W | 15 ps
0 0 -r 5, 1 1 -r 6             | 4  | 4  | W | _
0 10, 1 @5ps, X 20             | 6  | 6  | W | 5 ps
0 0, 1 1.5                     | 7  | 3  | W | 1.5
/custom a, b                   | 8  | 1  | E | no such file
x \Counter                     | 0  | 2  | E | counter
/vesk                          | 5  | 0  | E | _
/vesk (010NS                   | 6  | 1  | E | _
x /VESK [1F                    | 8  | 1  | E | _
/vesk 010NS1                   | 11 | 1  | E | _
/vesk 01.                      | 8  | 1  | E | _
/vesk 110NS(010NS)             | 17 | 1  | E | _
/vesk 010NS 1 110NS            | 12 | 1  | E | _
/vesk [zz]5 01                 | 6  | 4  | E | _
/vesk 110NS (010NS) 110NS      | 18 | 1  | E | _
/vesk ((11)99999)99999         | 6  | 16 | E | 16777216
)";

TEST(CheckFormula, OneProblem) {
    for (const auto& row : Table(kTable)) {
        SCOPED_TRACE(row[0]);
        const auto problems = CheckFormula(row[0].c_str(), 1);
        ASSERT_EQ(problems.size(), 1U) << (problems.empty() ? "" : problems[0].sentence);
        const FormulaProblem& problem = problems[0];
        EXPECT_EQ(static_cast<std::int64_t>(problem.position), Int(row[1]));
        EXPECT_EQ(static_cast<std::int64_t>(problem.length), Int(row[2]));
        EXPECT_EQ(problem.severity == FormulaProblem::Severity::Error ? "E" : "W", row[3]);
        EXPECT_FALSE(problem.sentence.empty());
        EXPECT_NE(problem.sentence.find(row[4]), std::string::npos) << problem.sentence;
    }
}

TEST(CheckFormula, CleanFormulas) {
    for (const char* formula :
         {"0 0, 1 10, 0 20 -r 40", "0 0 1 10NS 0 20 ns -repeat 0.5us", "x 0 y", "x 0, y", "x",
          "U 0, 1 @100", "1 @5, 0 @3", "'(' 0, \"a, b\" 5, (a,(b)) 9, a( 10", " 0 0,, , 1 10, ",
          "0 5, 1 20 -r 16", "[x 0, ) 5", "0 0, s 10", "/vesk (010NS110NS)3/clk", "/vesk 1NS",
          "0 9200000000000000000, 1 0"}) {
        const auto problems = CheckFormula(formula);
        EXPECT_TRUE(problems.empty()) << formula << ": " << problems[0].sentence;
    }
}

TEST(CheckFormula, OrderUnitAndLimit) {
    const auto problems = CheckFormula("0 5zz, y, 1 -7, X 10 -r 5, (z");
    ASSERT_GE(problems.size(), 4U);
    for (std::size_t i = 1; i < problems.size(); ++i) {
        EXPECT_LE(problems[i - 1].position, problems[i].position);
    }
    EXPECT_TRUE(CheckFormula("0 0, 1 90 -r 10ns", 1).empty());
    EXPECT_EQ(CheckFormula("0 0, 1 90 -r 10ns", 2).size(), 1U);  // 90 ns
    EXPECT_EQ(CheckFormula(nullptr).size(), 1U);
    std::string many;
    for (int i = 0; i < 5000; ++i) {
        many += "0 5xs, ";
    }
    EXPECT_EQ(CheckFormula(many.c_str()).size(), kMaxFormulaProblems);
    EXPECT_EQ(CheckFormula(many.c_str()).back().severity, FormulaProblem::Severity::Error);
}

}  // namespace
}  // namespace corv::test
