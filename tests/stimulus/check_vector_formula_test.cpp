#include "corv/stimulators/counter.h"
#include "corv/stimulus/check_formula.h"
#include "corv/stimulus/formula_parser.h"
#include "tests/support/test.h"

namespace corv::test {
namespace {

using Problems = std::vector<Problem>;

bool HasErrors(const Problems& problems) {
    return std::any_of(problems.begin(), problems.end(), [](const Problem& problem) {
        return problem.severity == Problem::Severity::Error;
    });
}

constexpr int kAlone = -1;  // as the mode: a formula of one signal, not of a vector

Problems Check(const std::string& formula, int width, std::int64_t mode) {
    return mode == kAlone ? CheckFormula(formula.c_str())
                          : CheckVectorFormula(formula.c_str(), width, static_cast<int>(mode));
}

// mode | formula of four elements, the fault in «» | what the sentence names; a warning with "W:"
const char* const kFaults[] = {
    R"(1 | "01XZ" 0, «"1X1"» 5, 0101 6                                              | 4)",
    R"(1 | «01XZ0» 0                                                                | 01XZ0)",
    R"(1 | 16#F 0, «16#GG» 5                                                        | 16#GG)",
    R"(1 | «14» 0                                                                   | `10#14`)",
    R"(1 | 16#F 0, «16#1F» 5                                                        | W:needs 5 bits)",
    R"(1 | «10#-9» 0                                                                | W:needs 5 bits)",
    R"(1 | 00001111 0, «01010101» 5                                                 | W:needs 7 bits)",
    R"(1 | /vesk «[»1F]5NS                                                          | W:needs 5 bits)",
    R"(0 | «16#1F» 0                                                                | W:needs 5 bits)",
    R"(0 | «(a,b)» 0                                                                | W:2 words for 4)",
    R"(0 | «red» 0                                                                  | W:1 word for 4)",
    R"(0 | «(a,b,c,d,e)» 0                                                          | W:5 words for 4)",
    R"(1 | «""» 0                                                                   | 4)",
    R"(0 | (a,b,c,d) 0, «()» 5                                                          | ())",
    R"(1 | 16#F 0, 16#E 5«xs»                                                       | xs)",
    R"(1 | /vesk [F]10NS «X»5NS                                                      | 4)",
    R"(0 | \counter\TYPE\1\DIR\1\RADIX\10\START\«x»\INC\1\PERIOD\5\REV\0            | 10)",
    R"(1 | \counter\TYPE\2\DIR\1\RADIX\16\START\ff\INC\«fg»\PERIOD\5\REV\0          | 16)",
    R"(1 | \counter\TYPE\3\DIR\1\RADIX\«17»\START\ff\INC\0\PERIOD\5\REV\0           | radix)",
    R"(1 | \counter\TYPE\«6»\DIR\1\RADIX\8\START\7\INC\0\PERIOD\5\REV\0             | 6)",
    R"(1 | \counter\TYPE\5\DIR\1\RADIX\8\START\7\INC\0\PERIOD\«0.4»\REV\0           | ps)",
    R"(1 | \counter\TYPE\5\DIR\1\RADIX\8\START\7\INC\0\PERIOD\«10 ns»\REV\0         | time)",
    R"(1 | \counter\TYPE\5\DIR\1\RADIX\8\«INC»\7\START\0\PERIOD\5\REV\0             | START)",
    R"(1 | \counter\TYPE\5\DIR\1\RADIX\8\START\7\INC\0\PERIOD\5«»                   | REV)",
    R"(1 | \counter\TYPE\5\DIR\1\RADIX\8\START\7\INC\0\PERIOD\5\REV«»               | REV)",
    R"(1 | «0 0, »\counter\TYPE\5\DIR\1\RADIX\8\START\7\INC\0\PERIOD\5\REV\0        | counter)",
    R"(-1 | \counter\TYPE\«2»\DIR\1\RADIX\10\START\0\INC\1\PERIOD\5\REV\0           | TYPE 1)",
    R"(-1 | \counter\TYPE\1\DIR\1\RADIX\10\START\0\INC\1\PERIOD\«x»\REV\0           | time)",
    R"(-1 | «\counter\wire\4\handle\0»                                              | 3)",
    R"(-1 | «\counter\wire\-1\handle\0»                                             | 3)",
    R"(-1 | «\counter\wire\0\handle\1»                                              | 1)",
    R"(1 | «\counter\wire\0\handle\0»                                               | _)",
};

TEST(CheckVectorFormula, OneProblem) {
    const std::string opening("«");
    ResetCounters();
    const char* counter =
        "\\counter\\TYPE\\5\\DIR\\1\\RADIX\\8\\START\\7\\INC\\0\\PERIOD\\5\\REV\\0";
    ASSERT_EQ(RegisterCounter(counter, 4, 1), 0);
    for (const char* text : kFaults) {
        const auto row = Table(text).at(0);
        SCOPED_TRACE(row[1]);
        std::string formula = row[1];
        const std::size_t begin = formula.find(opening);
        formula.erase(begin, opening.size());
        const std::size_t end = formula.find("»");
        formula.erase(end, opening.size());
        const Problems problems = Check(formula, 4, Int(row[0]));
        ASSERT_EQ(problems.size(), 1U) << (problems.empty() ? "" : problems[0].sentence);
        EXPECT_EQ(problems[0].position, begin);
        EXPECT_EQ(problems[0].length, end - begin);
        const bool warning = row[2].starts_with("W:");
        EXPECT_EQ(problems[0].severity == Problem::Severity::Warning, warning);
        EXPECT_NE(problems[0].sentence.find(row[2].substr(warning ? 2 : 0)), std::string::npos)
            << problems[0].sentence;
    }
    EXPECT_EQ(FindCounter(1), nullptr);  // nothing was registered
    ResetCounters();
}

TEST(CheckVectorFormula, CleanFormulas) {
    ResetCounters();
    for (const auto& row : Table(R"(
        1 | "01XZ" 0, 16#F 5, 10#-1 6, 10#-8 6500, 01 7000, 0001111 8000, (ZZZZ) 9000 -r 20000 ;; 1 | /vesk [F]5NS[0]5NS/clk
        0 | (a,b,c,d) 0, ((a),b,"c",'d') 6, 16#F 9, 10#-8 12 ;; 0 | \counter\TYPE\1\DIR\1\RADIX\10\START\-5\INC\1\PERIOD\5ns\REV\0
        1 | \COUNTER\type\2\dir\2\radix\2\start\101\inc\1\period\0.5NS\rev\1\more
        1 | \counter\TYPE\3\DIR\1\RADIX\8\START\7\INC\0\PERIOD\5\REV\0
        1 | \counter\TYPE\4\DIR\1\RADIX\8\START\7\INC\0\PERIOD\5\REV\0
        1 | \\counter\\TYPE\\5\DIR\1\RADIX\8\START\7\INC\0\PERIOD\5\REV\0
        -1 | \counter\TYPE\1\DIR\1\RADIX\16\START\ff\INC\1\PERIOD\5\REV\0)")) {
        const Problems problems = Check(row[1], 4, Int(row[0]));
        EXPECT_TRUE(problems.empty()) << row[1] << ": " << problems[0].sentence;
    }
    EXPECT_EQ(FindCounter(0), nullptr);
    const char* counter =
        "\\counter\\TYPE\\4\\DIR\\1\\RADIX\\8\\START\\7\\INC\\0\\PERIOD\\5\\REV\\0";
    ASSERT_EQ(RegisterCounter(counter, 4, 1), 0);
    EXPECT_TRUE(CheckFormula("\\Counter\\wire\\3\\handle\\0").empty());
    EXPECT_TRUE(CheckVectorFormula("(a,b) 0, (c,d) 5, (a,b) 9 -r 10ns", 2, 0, TimeUnit::Nanosecond)
                    .empty());
    EXPECT_EQ(CheckVectorFormula("11 0, 01 20 -r 10ns", 2, 1, TimeUnit::Nanosecond).size(),
              1U);  // 20 ns
    EXPECT_TRUE(HasErrors(CheckVectorFormula(nullptr, 4, 1)));
    EXPECT_TRUE(HasErrors(CheckVectorFormula("16#F 0", kMaxVectorWidth + 1, 1)));
    EXPECT_TRUE(HasErrors(CheckVectorFormula("/vesk (010NS110NS)700000", 64, 1)));
    EXPECT_TRUE(HasErrors(CheckVectorFormula("0 0", -1, 1)));
    EXPECT_TRUE(HasErrors(CheckVectorFormula(counter, kMaxVectorWidth + 1, 1)));
    ResetCounters();
}

// A formula without errors can be cut.
TEST(CheckVectorFormula, FindsWhateverCanNotBeCut) {
    static constexpr const char* kValues[] = {"\"01XZ\"", "01XZ", "16#F",   "(0101)", "10#-1",
                                              "\"1X1\"",  "01",   "[ZZZZ]", "16#G",   "-r"};
    static constexpr const char* kCounters[] = {
        "\\counter\\TYPE\\5\\DIR\\1\\RADIX\\8\\START\\7\\INC\\0\\PERIOD\\5\\REV\\0",
        "\\counter\\wire\\0\\handle\\0"};
    int refused = 0;
    for (std::uint32_t seed = 1; seed <= 3'000; ++seed) {
        const int mode = static_cast<int>(seed % 2);
        ResetCounters();
        ASSERT_EQ(RegisterCounter(kCounters[0], 4, mode), 0);
        Random random(seed);
        std::string formula = random.OneIn(6) ? random.Pick(kCounters) : "";
        for (std::size_t i = formula.empty() ? 1 + random.Below(4) : 0; i > 0; --i) {
            formula += random.Pick(kValues) + (" " + std::to_string(i * 5)) + ", ";
        }
        formula = random.OneIn(3) ? formula : Mutate(random, formula);
        const bool errors = HasErrors(CheckVectorFormula(formula.c_str(), 4, mode));
        CStringArray list;
        const bool cut = CFormulaParser().Run(formula.c_str(), list, 4, mode) == 1;
        EXPECT_TRUE(errors || cut) << "seed " << seed << " mode " << mode << ": " << formula;
        refused += cut ? 0 : 1;
    }
    EXPECT_GT(refused, 300);
    EXPECT_LT(refused, 2'700);
    ResetCounters();
}

}  // namespace
}  // namespace corv::test
