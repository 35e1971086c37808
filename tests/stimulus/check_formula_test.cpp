#include "corv/stimulus/check_formula.h"

#include <tuple>

#include "corv/stimulus/stimulus.h"
#include "tests/support/test.h"

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
0 0, 1 10 -r -40               | 10 | 6  | E | 40ps
0 0, 1 10, 0 20 -r 15          | 11 | 4  | W | 15ps
0 0, 1 50 -r 40                | 5  | 4  | W | 40ps
0 0, 1 20, X 40 -r 40          | 11 | 4  | W | 40ps
0 20, 1 10                     | 6  | 4  | W | 20ps
0 9200000000000000000, 1 0     | 23 | 3  | W | starts at
0 10, 1 10                     | 6  | 4  | W | `0`
0 @10, 1 @10                   | 7  | 5  | W | `0`
0 0, 1 10, X @10               | 5  | 4  | W | absolute
1 -r 40                        | 2  | 2  | E | `-r`
x, -r 40                       | 0  | 1  | W | `x`
0 0, 1 10 s                    | 10 | 1  | W | did you mean `sec`?
0 0, 1 10 nsec                 | 10 | 4  | W | did you mean `ns`?
0 0, 1 10 µs            | 10 | 3  | W | did you mean `us`?
0 0, 1 10 μs            | 10 | 3  | W | did you mean `us`?
0 0, 1 10,5ns                  | 10 | 3  | W | did you mean `10.5ns`
0 0, 1 10 @20                  | 10 | 3  | W | one time only
0 0, 1 10 -r40                 | 10 | 4  | W | did you mean `-r 40`?
0 0, 1 10 -repeat=40           | 10 | 10 | W | did you mean `-r 40`?
0 0, 1 10 -rep 40              | 10 | 7  | W | did you mean `-r 40`?
0 0, 1 10, --Repeat 40ns       | 11 | 13 | W | did you mean `-r 40ns`?
0 0, 1 10 repeat 40            | 10 | 9  | W | did you mean `-r 40`?
0 0 1 10 0                     | 9  | 1  | W | `0` has no time
0 0, 1                         | 5  | 1  | W | write a time after it
0 0 1 10 5                     | 9  | 1  | W | write a time after it
clk=0 0, 1 5ns                 | 0  | 4  | W | `clk=`
bus:8=X 0                      | 0  | 6  | W | `bus:8=`
0 0,\r\n1 10\r\n           | 4  | 1  | E | carriage return
0 0, 1 10               | 5  | 5  | E | non-breaking
1 10000000000000000001fs       | 2  | 22 | W | 10000sec
0 0 -r 5, 1 1 -r 6             | 4  | 4  | W | _
0 10, 1 @5ps, X 20             | 6  | 6  | W | 5ps
0 0, 1 1.5                     | 7  | 3  | W | 1.5
/custom a, b                   | 8  | 1  | E | no such file
x \Counter                     | 0  | 2  | E | counter
/vesk                          | 5  | 0  | E | _
/vesk (010NS                   | 6  | 1  | E | _
/VESK [1F                      | 6  | 1  | E | _
/vesk 010NS1                   | 11 | 1  | E | _
/vesk 01.                      | 8  | 1  | E | _
/vesk 110NS(010NS)             | 17 | 1  | E | _
/vesk 010NS 1 110NS            | 12 | 1  | E | _
/vesk [zz]5 01                 | 6  | 4  | E | _
/vesk 110NS (010NS) 110NS      | 18 | 1  | E | _
/vesk ((11)99999)99999         | 6  | 16 | E | 16777216
/vesk (010NS)16777217          | 6  | 15 | E | 16777216
/vesk (09HR)16777216           | 6  | 14 | E | 9.2e18
/vesk (010NS)0 110NS           | 6  | 14 | E | begins
/vesk ((010NS)0)2 110NS        | 6  | 17 | E | begins
0 0 /vesk 010NS                | 0  | 3  | W | before `/vesk`
/vesk 0PS110NS/CLK             | 6  | 1  | W | lasts 0
/vesk 00NS110NS/CLK            | 6  | 2  | W | lasts 0
/vesk 1NS                      | 6  | 1  | W | lasts 0
/vesk "10NS010NS               | 6  | 1  | E | cannot be a value
)";

// The carriage returns and line feeds of the table.
std::string Unescape(std::string text) {
    for (const auto& [written, meant] : {std::pair("\\r", '\r'), std::pair("\\n", '\n')}) {
        for (std::size_t at = 0; (at = text.find(written)) != std::string::npos;) {
            text.replace(at, 2, 1, meant);
        }
    }
    return text;
}

TEST(CheckFormula, OneProblem) {
    for (const auto& row : Table(kTable)) {
        SCOPED_TRACE(row[0]);
        const auto problems = CheckFormula(Unescape(row[0]).c_str());
        EXPECT_EQ(problems.size(), 1U) << (problems.empty() ? "" : problems[0].sentence);
        if (problems.empty()) {
            continue;
        }
        const Problem& problem = problems[0];
        EXPECT_EQ(static_cast<std::int64_t>(problem.position), Int(row[1]));
        EXPECT_EQ(static_cast<std::int64_t>(problem.length), Int(row[2]));
        EXPECT_EQ(problem.severity == Problem::Severity::Error ? "E" : "W", row[3]);
        EXPECT_FALSE(problem.sentence.empty());
        EXPECT_NE(problem.sentence.find(row[4]), std::string::npos) << problem.sentence;
    }
}

TEST(CheckFormula, CleanFormulas) {
    for (const char* formula :
         {"0 0, 1 10, 0 20 -r 40", "0 0 1 10NS 0 20 ns -repeat 0.5us", "x", "U, 1 10",
          "0 0, repeat 5, rep 6", "U 0, 1 @100", "1 @5, 0 @3",
          "'(' 0, \"a, b\" 5, (a,(b)) 9, a( 10", " 0 0,, , 1 10, ", "0 5, 1 20 -r 16", "[x 0, ) 5",
          "0 0, s 10", "/vesk (010NS110NS)3/clk", "0 0, 1 20, 0 40 -r 40",
          "0 0, 1 10000000000000000000fs", "0 0, \"a\rb\" 10", "/vesk 010NS ()4000000000 110NS",
          "/vesk (010NS)16777216", "=a 0, - 5, -3 10, -red 15, a=1 20"}) {
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
    EXPECT_TRUE(CheckFormula("0 0, 1 90 -r 10ns").empty());
    EXPECT_EQ(CheckFormula("0 0, 1 90 -r 10ns", TimeUnit::Nanosecond).size(), 1U);  // 90 ns
    EXPECT_EQ(CheckFormula(nullptr).size(), 1U);
}

std::string Repeat(const std::string& text, int times) {
    std::string out;
    for (int i = 0; i < times; ++i) {
        out += text;
    }
    return out;
}

// Of too many problems the errors are kept, and the last line is an error only for more of these.
TEST(CheckFormula, TooManyProblems) {
    const auto error = Problem::Severity::Error;
    const auto warning = Problem::Severity::Warning;
    for (const auto& [formula, last, errors] : {std::tuple(Repeat("0 5xs, ", 5'000), error, 100),
                                                {Repeat("0 0.5, ", 5'000), warning, 0},
                                                {Repeat("-r 5,", 100'000), warning, 1},
                                                {Repeat("0 0.5, ", 500) + "1 5xs", warning, 1}}) {
        SCOPED_TRACE(formula.substr(0, 20));
        const auto problems = CheckFormula(formula.c_str());
        ASSERT_EQ(problems.size(), kMaxFormulaProblems);
        EXPECT_EQ(problems.back().severity, last);
        EXPECT_EQ(std::count_if(problems.begin(), problems.end(),
                                [&](const Problem& p) { return p.severity == error; }),
                  errors);
        EXPECT_TRUE(
            std::is_sorted(problems.begin(), problems.end(),
                           [](const auto& a, const auto& b) { return a.position < b.position; }));
    }
    const std::string deep = "/vesk " + Repeat("(", 300) + "010NS" + Repeat(")2", 300) + " 010NS";
    EXPECT_EQ(CheckFormula(deep.c_str()).size(), 1U);
    for (const Problem& problem :
         CheckFormula(("0 0, 1 10" + std::string(39, 'x') + "\u00e9").c_str())) {
        EXPECT_NE(problem.sentence.find("x...`"), std::string::npos) << problem.sentence;
    }
}

}  // namespace
}  // namespace corv::test
