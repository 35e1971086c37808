// Random formulas, and damaged ones, against the naive model: every answer must be the same.

#include "corv/stimulus/check_formula.h"
#include "corv/stimulus/stimulus.h"
#include "tests/support/naive_stimulus.h"
#include "tests/support/test.h"

namespace corv::test {
namespace {

constexpr std::int64_t kMax = std::numeric_limits<std::int64_t>::max();

void ExpectSameAnswers(const CStimulus& stimulus, const NaiveStimulus& model, std::int64_t time) {
    ASSERT_EQ(stimulus.GetNextEventTime(time), model.GetNextEventTime(time)) << "after " << time;
    CString value("none");
    const int found = stimulus.GetValue(time, value);
    const auto expected = model.GetValue(time);
    ASSERT_EQ(found, expected ? 1 : 0) << "at " << time;
    ASSERT_EQ(std::string(value), expected.value_or("none")) << "at " << time;
}

// Asks at and just before each event from before the start on, at random times, and for the text.
void ExpectSame(CStimulus& stimulus, const NaiveStimulus& model, std::int64_t start,
                Random& random) {
    std::vector<std::int64_t> times;
    std::int64_t time = start - 2;
    for (std::size_t steps = 2 * model.Size() + 10; steps > 0 && time >= start - 2; --steps) {
        times.push_back(time);
        time = model.GetNextEventTime(time);
        times.push_back(time - 1);
    }
    for (int i = 0; i < 20; ++i) {
        times.push_back(static_cast<std::int64_t>(random.Bits() >> random.Below(64)));
        times.push_back(start / 2 + static_cast<std::int64_t>(random.Below(5000)) + start / 2);
    }
    for (const std::int64_t at : times) {
        ASSERT_NO_FATAL_FAILURE(ExpectSameAnswers(stimulus, model, at));
    }
    CString normal;
    stimulus.GenerateFormula(normal);
    ASSERT_EQ(std::string(normal), model.GenerateFormula());
}

TEST(StimulusModel, RandomFormulas) {
    const auto starts = Split(
        "0 0 0 1 100 -37 -123456 9000000000000000000 9223372036854765807 -9223372036854775 "
        "9223372036854774",
        ' ');
    for (std::uint32_t seed = 1; seed <= 200; ++seed) {
        Random random(seed);
        const std::string formula = RandomFormula(random, 1 + seed % 200);
        const std::int64_t start = Int(starts[random.Below(starts.size())]);
        const unsigned unit = random.OneIn(6) ? 2 : 1;
        SCOPED_TRACE(testing::Message() << "seed " << seed << " start " << start << " unit " << unit
                                        << " formula " << formula);
        CStimulus stimulus(unit, 1);
        NaiveStimulus model(unit);
        ASSERT_EQ(stimulus.Create(formula.c_str(), start), model.Create(formula, start) ? 1 : 0);
        const std::int64_t from = std::min(NaiveConvert(start, unit, 1), kMax - 10'000);
        ASSERT_NO_FATAL_FAILURE(ExpectSame(stimulus, model, from, random));
        ASSERT_NO_FATAL_FAILURE(ExpectSame(stimulus, model, from, random));  // the text written
        stimulus.NoRepeat();
        model.NoRepeat();
        ASSERT_NO_FATAL_FAILURE(ExpectSame(stimulus, model, from, random));
        stimulus.Destroy();
        ASSERT_EQ(stimulus.GetNextEventTime(from), -1);
        ASSERT_EQ(stimulus.Create("1 3ps", 0), 1);  // nothing of the old pattern is left
        ASSERT_EQ(stimulus.GetNextEventTime(0), 3);
    }
}

TEST(StimulusModel, NormalFormReadsBackAsTheSameStimulus) {
    for (std::uint32_t seed = 1; seed <= 200; ++seed) {
        Random random(seed);
        const std::string formula = RandomFormula(random, 1 + seed % 60) + ", 1 77";
        SCOPED_TRACE(testing::Message() << "seed " << seed << " formula " << formula);
        CStimulus stimulus;
        CStimulus again;
        NaiveStimulus model;
        CString normal;
        ASSERT_EQ(stimulus.Create(formula.c_str(), 5), 1);
        stimulus.GenerateFormula(normal);
        ASSERT_EQ(again.Create(normal, 5), 1);
        ASSERT_TRUE(model.Create(formula, 5));
        ASSERT_EQ(again.GetRepeatRate(), stimulus.GetRepeatRate());
        ASSERT_NO_FATAL_FAILURE(ExpectSame(again, model, 5, random));
    }
}

const char* const kSeeds[] = {
    "0 0, 1 10, 0 20 -r 40",
    "'0' 5ns, \"01 XZ\" @15, (a,(b,c)) 20 ns, y -REPEAT 1.5 us",
    "0 -1, 1 9300000000000000000, X @ 5",
    "/vesk (010NS[1F]1.5NS)3 x5/CLK",
    "\\counter a /custom b, c",
};

// Create gives what the model gives, and where it refuses, the check names an error.
void ExpectDefined(const std::string& formula, std::uint32_t seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed << " formula " << formula);
    Random random(seed);
    CStimulus stimulus;
    const int created = stimulus.Create(formula.c_str(), 0);
    ASSERT_TRUE(created == 0 || created == 1);
    if (formula.find_first_of("/\\") == std::string::npos) {  // of the ordinary kind
        NaiveStimulus model;
        ASSERT_EQ(created, model.Create(formula, 0) ? 1 : 0);
        ASSERT_NO_FATAL_FAILURE(ExpectSame(stimulus, model, 0, random));
    }
    const std::vector<Problem> problems = CheckFormula(formula.c_str());
    bool has_error = false;
    for (const Problem& problem : problems) {
        ASSERT_LE(problem.position + problem.length, formula.size());
        ASSERT_FALSE(problem.sentence.empty());
        has_error |= problem.severity == Problem::Severity::Error;
    }
    ASSERT_TRUE(created == 1 || has_error);
    ASSERT_LE(problems.size(), kMaxFormulaProblems);
    ASSERT_EQ(stimulus.Create("1 3", 0), 1);
    ASSERT_EQ(stimulus.GetNextEventTime(-1), 3);
}

TEST(StimulusModel, TruncatedAndDamagedFormulas) {
    for (const std::string formula : kSeeds) {
        for (std::size_t length = 0; length <= formula.size(); ++length) {
            ASSERT_NO_FATAL_FAILURE(ExpectDefined(formula.substr(0, length), 0));
        }
    }
    for (std::uint32_t seed = 1; seed <= 2000; ++seed) {
        Random random(seed);
        std::string formula =
            random.OneIn(2) ? RandomFormula(random, 1 + random.Below(9)) : random.Pick(kSeeds);
        if (random.OneIn(10)) {
            for (char& c : formula) {
                c = static_cast<char>(1 + random.Below(255));
            }
        }
        ASSERT_NO_FATAL_FAILURE(ExpectDefined(Mutate(random, formula), seed));
    }
}

// what stands in front | one character | how often | what stands behind | result of Create
TEST(StimulusModel, HugeTexts) {
    for (const auto& row : Table(R"(
        _ | ( | 10000000 | _ | 1 ;; /vesk | ( | 10000000 | _ | 0 ;; _ | ( | 300000 | )) 5 | 1
        _ | , | 300000 | 1 | 0 ;; _ | ' | 300000 | _ | 1 ;; /vesk | [ | 300000 | ]1 | 0
        /vesk 11ns | 5 | 300000 | ns | 1 ;; 0 @ | 9 | 300000 | ns | 1 ;; x | ) | 300000 | 5 | 1
        0 0 -r  | - | 300000 | 5 | 1 ;; /vesk 1ns( | ( | 300000 | )1)1 | 0)")) {
        const std::string body(static_cast<std::size_t>(Int(row[2])), row[1][0]);
        const std::string formula = row[0] + body + row[3];
        CStimulus stimulus;
        EXPECT_EQ(stimulus.Create(formula.c_str(), 0), Int(row[4])) << formula.substr(0, 20);
        EXPECT_LE(CheckFormula(formula.c_str()).size(), kMaxFormulaProblems);
        EXPECT_EQ(stimulus.Create("1 3", 0), 1);
    }
}

}  // namespace
}  // namespace corv::test
