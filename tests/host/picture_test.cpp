#include "host/picture.h"

#include "corv/stimulus/stimulus.h"
#include "host/driver.h"
#include "host/fit_text.h"
#include "host/source.h"
#include "host/terminal.h"
#include "tests/support/test.h"

namespace corv::host {
namespace {

constexpr const char* kValues[] = {"0", "1", "'1'", "x",  "U",       "Z",   "\"L\"",   "h",
                                   "W", "-", "10",  "-1", "16#BEEF", "red", "(0,1,1)", "\"\""};

TEST(Classify, KnowsTheNineValuesAndNoOther) {
    const std::string letters = "0 1 Z L H X U W -";
    for (std::size_t i = 0; i < letters.size(); i += 2) {
        const std::string letter = letters.substr(i, 1);
        const ShownValue value = Classify(letter);
        EXPECT_NE(value.value_class, ValueClass::Bus) << letter;
        EXPECT_EQ(value.text, letter);
        EXPECT_EQ(Classify("'" + letter + "'"), value);
        EXPECT_EQ(Classify("\"" + letter + "\""), value);
    }
    EXPECT_EQ(Classify("z"), Classify("Z"));
    EXPECT_EQ(Classify("U").value_class, Classify("X").value_class);
    EXPECT_NE(Classify("U"), Classify("X"));
    for (const char* text : {"2", "00", "'1\"", "(1)", "'''", "A", "", "\"\""}) {
        EXPECT_EQ(Classify(text), (ShownValue{ValueClass::Bus, text}));
    }
}

// What a column must show, told by looking at every picosecond of it.
struct Expected {
    int changes = 0;
    ShownValue first, last;
};

std::vector<Expected> Scan(const CStimulus& stimulus, const TimeGrid& grid) {
    std::vector<Expected> columns(static_cast<std::size_t>(grid.Columns()));
    const auto value_at = [&](std::int64_t time) {
        CString text;
        return time >= 0 && stimulus.GetValue(time, text) ? Classify(text.View()) : ShownValue();
    };
    ShownValue value = value_at(grid.Window().start - 1);
    std::int64_t time = grid.Window().start;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        columns[i].first = value;
        for (; time < grid.Window().end && grid.Column(time) == static_cast<std::int64_t>(i);
             ++time) {
            const ShownValue now = value_at(time);
            columns[i].changes += now != value;
            value = now;
        }
        columns[i].last = value;
    }
    for (std::size_t first = 0, end = 0; first < columns.size(); first = end + 1) {
        bool dense = false;
        for (end = first; end < columns.size() && columns[end].changes > 0; ++end) {
            dense |= columns[end].changes > 1;
        }
        for (std::size_t i = first; dense && i < end; ++i) {
            columns[i].changes = 2;  // what stands beside it is as dense
        }
    }
    return columns;
}

std::string RandomSignal(test::Random& random) {
    std::string formula;
    const std::size_t size = 1 + random.Below(12);
    const std::size_t span = 10 + random.Below(90);
    for (std::size_t i = 0; i < size; ++i) {
        formula += (i ? ", " : "") + std::string(random.Pick(kValues)) +
                   (random.OneIn(5) ? " @" : " ") + std::to_string(random.Below(span));
    }
    return formula + (random.OneIn(2) ? " -r " + std::to_string(2 * span) : "");
}

TEST(LayOut, EveryColumnShowsWhatAScanOfEveryPicosecondSays) {
    test::Random random(3);
    int edges = 0, crowds = 0;
    for (int round = 0; round < 2000; ++round) {
        const std::string formula = RandomSignal(random);
        auto owned = std::make_unique<CStimulus>();
        const CStimulus& stimulus = *owned;
        ASSERT_TRUE(owned->Create(formula.c_str(), 0)) << formula;
        StimulusSource source(std::move(owned));
        const auto start = static_cast<std::int64_t>(random.Below(200));
        const TimeGrid grid({start, start + 1 + static_cast<std::int64_t>(random.Below(400))},
                            1 + static_cast<std::int64_t>(random.Below(90)));
        SCOPED_TRACE(formula + " from " + std::to_string(start));

        const Lane lane = LayOut(RecordForGrid(source, grid), grid);
        const Lane all = LayOut(RecordEvents(source, grid.Window(), 100000), grid);
        ASSERT_EQ(lane.segments.size(), all.segments.size());
        std::int64_t end = start;
        for (std::size_t i = 0; i < lane.segments.size(); ++i) {
            EXPECT_EQ(lane.segments[i].from, end);
            EXPECT_EQ(lane.segments[i].from, all.segments[i].from);
            EXPECT_EQ(lane.segments[i].value, all.segments[i].value);
            EXPECT_TRUE(i == 0 || lane.segments[i].value != lane.segments[i - 1].value);
            end = lane.segments[i].to;
        }
        EXPECT_EQ(end, grid.Window().end);

        const std::vector<Expected> expected = Scan(stimulus, grid);
        const std::vector<Cell> cells = CellsOf(lane, grid);
        for (std::size_t i = 0; i < cells.size(); ++i) {
            const bool activity = cells[i].segment->value.value_class == ValueClass::Activity;
            ASSERT_EQ(activity, expected[i].changes > 1) << "column " << i;
            if (activity) {
                ++crowds;
                continue;
            }
            ASSERT_EQ(cells[i].segment->value, expected[i].last) << "column " << i;
            if (cells[i].before) {
                ++edges;
                ASSERT_EQ(expected[i].changes, 1) << "column " << i;
                ASSERT_EQ(cells[i].before->value, expected[i].first) << "column " << i;
            }
        }
    }
    EXPECT_GT(edges, 1000);
    EXPECT_GT(crowds, 1000);
}

TEST(LayOut, HasNoValueAfterTheLastKnownTime) {
    const TimeGrid grid({10, 30}, 10);
    const std::pair<std::int64_t, std::int64_t> rows[] = {{5, 10},  {9, 10},  {10, 12}, {17, 18},
                                                          {27, 28}, {28, 30}, {40, 30}};
    for (const auto& [known, end] : rows) {
        Trace trace;
        trace.before = "0";
        trace.changes = {{12, "1"}, {20, "0"}, {28, "1"}, {29, "0"}};
        while (!trace.changes.empty() && trace.changes.back().time > known) {
            trace.changes.pop_back();
        }
        trace.known_until = known;
        const Lane lane = LayOut(trace, grid);
        EXPECT_EQ(lane.segments.back().to, 30);
        for (const Segment& segment : lane.segments) {
            const bool none = segment.value.value_class == ValueClass::None;
            EXPECT_EQ(none, segment.from >= end) << known << " at " << segment.from;
            EXPECT_TRUE(segment.to <= end || none) << known << " to " << segment.to;
        }
    }
}

TEST(FitText, IsWholeOrSaysThatItIsNot) {
    const std::string text =
        "a\xC3\xA4"
        "cdefgh";
    for (std::size_t width = 0; width < 10; ++width) {
        for (const std::string ellipsis : {"…", ".."}) {
            const std::string fit = FitText(text, width, ellipsis);
            const std::size_t cut = fit.find(ellipsis);
            EXPECT_LE(TextWidth(fit), width);
            if (width >= 8) {
                EXPECT_EQ(fit, text);
            } else if (width < TextWidth(ellipsis) + 2) {
                EXPECT_EQ(fit, "");
            } else {
                ASSERT_NE(cut, std::string::npos);
                EXPECT_EQ(TextWidth(fit), width);
                EXPECT_TRUE(text.starts_with(fit.substr(0, cut)));
                EXPECT_TRUE(text.ends_with(fit.substr(cut + ellipsis.size())));
            }
        }
    }
}

TEST(FitText, LeavesOnlyPrintableCharacters) {
    const std::pair<std::string, std::string> rows[] = {
        {"plain", "plain"},
        {"\x1b[1m", "\uFFFD[1m"},
        {"a\tb\x7f", "a\uFFFDb\uFFFD"},
        {"\xC3\xA4", "\u00E4"},
        {"\xC3", "\uFFFD"},
        {"\xC0\x80", "\uFFFD\uFFFD"},
        {"\xE2\x82", "\uFFFD\uFFFD"},
        {"\xF0\x9F\x98\x80", "\U0001F600"},
        {"\xED\xA0\x80", "\uFFFD\uFFFD\uFFFD"},
        {"\xC2\x85", "\uFFFD\uFFFD"},
        {std::string("\0", 1), "\uFFFD"},
        {"\xEF\xBF\xBF", "\uFFFD\uFFFD\uFFFD"},
        {"a\u202Eb", "a\uFFFD\uFFFD\uFFFDb"},
        {"\u2066\u061C", "\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD"},
        {"\u2026\u2027\u2065", "\u2026\u2027\u2065"},
    };
    for (const auto& [text, clean] : rows) {
        EXPECT_EQ(CleanText(text), clean);
    }
}

TEST(FitValue, WhatIsLeftReadsAsNoOtherValue) {
    const auto rows = test::Table(R"(
20.5|3|_ ;; 20.5|4|20.5 ;; -12345|5|_ ;; 103375ns|7|_ ;; 1.79769e+308|11|_ ;; 1e-09|4|_
        12345678901|10|_ ;; 12345678901234567890|9|1234…7890 ;; 12Mohm|5|_
        0001|3|_ ;; 0ZX1|3|_ ;; DEADBEEF|6|_ ;; DEADBEEF01|7|DEA…F01 ;; DEADBEEF01|6|_
        00000000DEADBEEF|12|000000…DBEEF ;; 16#12345678#|9|16#1…678# ;; 16#1F|4|_
        (10,20,30)|10|(10,20,30) ;; (10,20,30)|9|(10,20,…) ;; (10,20,30)|8|(10,…)
        (10,20,30)|7|(10,…) ;; (10,20,30)|3|(…) ;; (10,20,30)|2|_ ;; ((1,2),3)|7|((1,…)
        s_idle|5|s_…le ;; s_idle|3|s…e ;; s_idle|2|_ ;; NaN|2|_)");
    for (const auto& row : rows) {
        EXPECT_EQ(FitValue(row[0], std::stoul(row[1]), "…"), row[2]) << row[0] << " in " << row[1];
    }
}

// Reads the words out of a drawn bus: whatever is no rail, edge or blank.
std::vector<std::string> WordsIn(std::string line) {
    for (const char* shape : {"═", "╳", "<", ">", "║"}) {
        for (std::size_t at; (at = line.find(shape)) != std::string::npos;) {
            line.replace(at, std::string(shape).size(), " ");
        }
    }
    std::vector<std::string> words;
    std::istringstream stream(line);
    for (std::string word; stream >> word;) {
        words.push_back(word);
    }
    return words;
}

TEST(DrawTerminal, NeverShowsAWrongValue) {
    test::Random random(5);
    int whole = 0, cut = 0;
    for (int round = 0; round < 500; ++round) {
        Trace trace;
        std::int64_t time = 0;
        for (int i = 0; i < 8; ++i) {
            const std::size_t length = 2 + random.Below(14);
            std::string value;
            while (value.size() < length) {
                value += static_cast<char>('G' + random.Below(14));
            }
            trace.changes.push_back({time, value});
            time += 1 + static_cast<std::int64_t>(random.Below(20));
        }
        const TimeGrid grid({0, time}, 20 + static_cast<std::int64_t>(random.Below(100)));
        const Picture picture{"", grid, {}, {LayOut(trace, grid)}};
        std::string drawing = DrawTerminal(picture, TerminalStyle{});
        drawing.erase(drawing.find("║ more") == std::string::npos ? drawing.size()
                                                                  : drawing.find("║ more"));
        std::size_t next = 0;
        for (const std::string& word : WordsIn(drawing.substr(drawing.find('\n', 1)))) {
            const std::size_t dots = word.find("…");
            const auto matches = [&](const Change& change) {
                return dots == std::string::npos
                           ? change.value == word
                           : change.value.starts_with(word.substr(0, dots)) &&
                                 change.value.ends_with(word.substr(dots + 3));
            };
            while (next < trace.changes.size() && !matches(trace.changes[next])) {
                ++next;
            }
            ASSERT_LT(next, trace.changes.size()) << word << " in\n" << drawing;
            ++next;
            ++(dots == std::string::npos ? whole : cut);
        }
    }
    EXPECT_GT(whole, 300);
    EXPECT_GT(cut, 300);
}

}  // namespace
}  // namespace corv::host
