// The examples of docs/formats/formulas.md.

#include "corv/stimulators/counter.h"
#include "corv/stimulus/check_formula.h"
#include "corv/stimulus/formula_parser.h"
#include "corv/stimulus/stimulus.h"
#include "tests/support/test.h"

namespace corv::test {
namespace {

// The texts in backticks of each row of a table, by the number of its columns.
std::vector<std::vector<std::string>> Rows(std::size_t columns) {
    std::ifstream page(TestFolder() + "/../docs/formats/formulas.md");
    std::vector<std::vector<std::string>> rows;
    for (std::string line; std::getline(page, line);) {
        std::size_t bars = 0;
        std::vector<std::string> texts;
        bool inside = false;
        for (const char c : line) {
            bars += c == '|' ? 1 : 0;
            if (c == '`') {
                inside = !inside;
                texts.resize(texts.size() + (inside ? 1 : 0));
            } else if (inside) {
                texts.back() += c;
            }
        }
        if (line.starts_with("| `") && bars == columns + 1) {
            rows.push_back(texts);
        }
    }
    return rows;
}

std::string Events(CStimulus& stimulus, bool open, std::size_t length) {
    std::string text;
    for (std::int64_t time = stimulus.GetNextEventTime(-1); time != -1;
         time = stimulus.GetNextEventTime(time)) {
        CString value;
        EXPECT_EQ(stimulus.GetValue(time, value), 1) << time;
        text += (text.empty() ? "" : " ") + std::to_string(time) + ":" + std::string(value.View());
        if (open && text.size() >= length) {
            return text + " …";
        }
    }
    return text;
}

TEST(FormulaExamples, DoWhatThePageSays) {
    std::size_t checked = 0;
    for (const auto& row : Rows(2)) {
        if (row.size() != 2 || row[1].find(':') == std::string::npos) {
            continue;  // a table of other things
        }
        const std::string more = " …";
        const bool open = row[1].ends_with(more);
        CStimulus stimulus;
        ASSERT_EQ(stimulus.Create(row[0].c_str(), 0), 1) << row[0];
        EXPECT_EQ(Events(stimulus, open, row[1].size() - more.size()), row[1]) << row[0];
        EXPECT_TRUE(CheckFormula(row[0].c_str()).empty()) << row[0];
        ++checked;
    }
    EXPECT_EQ(checked, 11U);
}

TEST(FormulaExamples, AreCutAsThePageSays) {
    ResetCounters();
    const auto rows = Rows(4);
    EXPECT_EQ(rows.size(), 3U);
    for (const auto& row : rows) {
        const auto width = static_cast<int>(row.size()) - 1;
        CStringArray list;
        const int split_mode = row[0].starts_with('(') ? 0 : 1;
        ASSERT_EQ(CFormulaParser().Run(row[0].c_str(), list, width, split_mode), 1) << row[0];
        for (int i = 0; i < width; ++i) {
            EXPECT_EQ(std::string(list[i]), row[static_cast<std::size_t>(i) + 1]);
        }
    }
}

}  // namespace
}  // namespace corv::test
