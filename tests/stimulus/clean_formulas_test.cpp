// No well-formed formula is complained about: neither the examples that the project itself shows,
// nor any that is put together from well-formed pieces.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "corv/stimulus/check_formula.h"
#include "corv/stimulus/stimulus.h"
#include "tests/support/paths.h"
#include "tests/support/random_formula.h"

namespace corv::test {
namespace {

namespace fs = std::filesystem;

std::string Read(const fs::path& path) {
    std::ostringstream out;
    out << std::ifstream(path).rdbuf();
    return out.str();
}

// The formulas after -f in commands, without names, and those of the table of formulas.
std::vector<std::string> ShownFormulas(const std::string& page) {
    static const std::regex kPattern(
        R"re(-f (?:[a-z0-9]+=)?'(?:[a-z0-9]+=)?([^':=…]*)'|\n\| `([^`…]*)` \|[^|\n]*\|(?=\n))re");
    std::vector<std::string> formulas;
    for (std::sregex_iterator at(page.begin(), page.end(), kPattern), end; at != end; ++at) {
        const std::string formula = (*at)[1].matched ? (*at)[1].str() : (*at)[2].str();
        if (!formula.starts_with("corv ") && formula.find(' ') != std::string::npos) {
            formulas.push_back(formula);
        }
    }
    return formulas;
}

TEST(CleanFormulas, ShownInThePages) {
    const fs::path root = fs::path(TestFolder()).parent_path();
    std::vector<std::string> formulas;
    for (const char* page : {"README.md", "docs/json.md"}) {
        const auto shown = ShownFormulas(Read(root / page));
        formulas.insert(formulas.end(), shown.begin(), shown.end());
    }
    EXPECT_GE(formulas.size(), 8U);
    for (const std::string& formula : formulas) {
        for (const FormulaProblem& problem : CheckFormula(formula.c_str())) {
            ADD_FAILURE() << formula << ": " << problem.sentence;
        }
    }
}

std::string RandomClean(Random& random) {
    static constexpr const char* kValues[] = {
        "0",  "1",     "Z",      "'X'",  "\"01XZ\"", "(a,(b))", "idle", "16#A5",    "-",
        "-3", "'a b'", "repeat", "10.5", "ns",       "true",    "U",    "\"a, b\"", "\\ext\\"};
    static constexpr const char* kUnits[] = {"", "ps", " ns", "NS", "us", " ms"};
    static constexpr std::int64_t kSizes[] = {1, 1, 1'000, 1'000, 1'000'000, 1'000'000'000};
    const bool absolute = random.OneIn(6);
    std::string out;
    std::int64_t time = 0;
    for (std::size_t i = 1 + random.Below(6); i > 0; --i) {
        const std::size_t unit = random.Below(std::size(kUnits));
        const std::int64_t number = time / kSizes[unit] + (out.empty() ? 0 : 1) +
                                    static_cast<std::int64_t>(random.Below(20));
        time = number * kSizes[unit];
        out += out.empty() ? "" : random.OneIn(2) ? ", " : ",";
        out += std::string(random.Pick(kValues)) + " " + (absolute ? "@" : "") +
               std::to_string(number) + kUnits[unit];
    }
    if (!absolute && random.OneIn(3)) {
        out += (random.OneIn(2) ? " -r " : ", -REPEAT ") + std::to_string(time + 1);
    }
    return out;
}

TEST(CleanFormulas, OfWellFormedPieces) {
    for (std::uint32_t seed = 1; seed <= 20'000; ++seed) {
        Random random(seed);
        const std::string formula = RandomClean(random);
        for (const FormulaProblem& problem : CheckFormula(formula.c_str())) {
            ADD_FAILURE() << "seed " << seed << ": " << formula << ": " << problem.sentence;
        }
    }
}

using Events = std::vector<std::pair<std::int64_t, std::string>>;

Events FirstEvents(const CStimulus& stimulus) {
    Events events;
    for (std::int64_t time = -1; events.size() < 30;) {
        time = stimulus.GetNextEventTime(time);
        if (time == -1) {
            break;
        }
        CString value;
        stimulus.GetValue(time, value);
        events.emplace_back(time, value.View());
    }
    return events;
}

// What has no problem does the same when it is written in normal form and read again.
TEST(CleanFormulas, MeanWhatTheirNormalFormMeans) {
    int clean = 0;
    for (std::uint32_t seed = 1; seed <= 20'000; ++seed) {
        Random random(seed);
        const std::string formula = Mutate(random, RandomClean(random));
        if (!CheckFormula(formula.c_str()).empty()) {
            continue;
        }
        ++clean;
        CStimulus stimulus;
        ASSERT_EQ(stimulus.Create(formula.c_str(), 0), 1) << "seed " << seed << ": " << formula;
        CString normal;
        stimulus.GenerateFormula(normal);
        CStimulus again;
        ASSERT_EQ(again.Create(normal, 0), 1) << normal.View();
        EXPECT_EQ(FirstEvents(stimulus), FirstEvents(again)) << "seed " << seed << ": " << formula;
    }
    EXPECT_GT(clean, 3'000);
}

}  // namespace
}  // namespace corv::test
