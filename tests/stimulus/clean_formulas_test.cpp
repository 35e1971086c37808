// No well-formed formula is complained about: neither the examples that the project itself shows,
// nor any that is put together from well-formed pieces.

#include "corv/stimulus/check_formula.h"
#include "corv/stimulus/stimulus.h"
#include "tests/support/test.h"

namespace corv::test {
namespace {

namespace fs = std::filesystem;

// What stands between two marks of a line, empty without them.
std::string Between(const std::string& line, const std::string& before, const std::string& after,
                    std::size_t& at) {
    const std::size_t begin = line.find(before, at);
    const std::size_t end =
        begin == line.npos ? line.npos : line.find(after, begin + before.size());
    at = end == line.npos ? line.npos : end + after.size();
    return end == line.npos ? "" : line.substr(begin + before.size(), end - begin - before.size());
}

void AddFormula(std::string text, std::vector<std::string>& formulas) {
    const std::size_t name =
        std::min(text.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789"), text.size());
    text.erase(0, text.substr(name).starts_with('=') ? name + 1 : 0);
    const bool is_whole = text.find("…") == text.npos && text.find(':') == text.npos;
    if (is_whole && text.find(' ') != text.npos) {
        formulas.push_back(text);
    }
}

// The formulas after -f in commands, without names, and those of the table of formulas.
std::vector<std::string> ShownFormulas(const std::string& page) {
    std::vector<std::string> formulas;
    std::istringstream lines(page.substr(std::min(page.find("## The program"), page.size())));
    bool in_table = false;
    for (std::string line; std::getline(lines, line);) {
        in_table = line.starts_with("| formula ") || (in_table && line.starts_with("| "));
        for (std::size_t at = in_table ? 0 : line.npos; at < line.size();) {
            AddFormula(Between(line, "| `", "` |", at), formulas);
        }
        for (std::size_t at = line.find(" -f "); at < line.size();) {
            AddFormula(Between(line, "'", "'", at), formulas);
        }
    }
    return formulas;
}

TEST(CleanFormulas, ShownInThePages) {
    const fs::path root = fs::path(TestFolder()).parent_path();
    std::vector<std::string> formulas;
    for (const char* page : {"README.md", "docs/json.md"}) {
        const auto shown = ShownFormulas(FileText(root / page));
        formulas.insert(formulas.end(), shown.begin(), shown.end());
    }
    EXPECT_GE(formulas.size(), 8U);
    for (const std::string& formula : formulas) {
        for (const Problem& problem : CheckFormula(formula.c_str())) {
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
        for (const Problem& problem : CheckFormula(formula.c_str())) {
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
