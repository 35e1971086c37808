#include "corv/stimulus/vesk.h"

#include "stimulus/vesk_formula.h"
#include "tests/support/naive_time.h"
#include "tests/support/test.h"

namespace corv::test {
namespace {

// text | ordinary formula
TEST(Vesk, Conversions) {
    for (const auto& row : Table(R"(
        010ns 110ns | 0 0ps,1 10ns
        (010NS110NS)3/CLK | 0 0ps,1 10ns,0 20ns,1 30ns,0 40ns,1 50ns -r 60ns
        (010NS)2/clkanything(( | 0 0ps,0 10ns -r 20ns
        [1F]25NS[0]5[fFfFfFfFf]1ps | 16#1F 0ps,16#0 25ns,16#FFFFFFFF 30ns
        15 05us | 1 0ps,0 5ns ;; 1 0 10NS | 1 0ps ;; 1.5NS x2 | 1 0ps,X 500ps
        1NS05PS | 1 0ps,0 0ps ;; h1L1H1l1 | 1 0ps,0 1ns,1 2ns,0 3ns
        X1Z1R1V1NS.1F1U1G1S1 | X 0ps,Z 1ns,X 2ns,X 3ns,X 4ns,X 5ns,1 6ns,0 7ns,X 8ns
        W1-1)1?1 | W 0ps,- 1ns,) 2ns,? 3ns
        11.25US01.0005NS05.0001PS X1 | 1 0ps,0 1250ns,0 1251ns,X 1251005ps
        11HR12.5MS 1.5HR01 | 1 0ps,1 1hr,1 3600002500us,0 5400002500us
        11000000MS11 | 1 0ps,1 1000sec
160000MS11 | 1 0ps,1 1min ;; 110NS(010NS) 010NS | 1 0ps,,0 10ns
        (010NS) 110NS | ,1 0ps ;; (010NS)0 | _ ;; (010NS)0/CLK | -r 0ps ;; ()3X1 | ,X 0ps
        ((01)) 31 | 3 0ps ;; ((01)2 1.5)2x1 | 0 0ps,0 1ns,1 2ns,0 2500ps,0 3500ps,1 4500ps,X 5ns
        [ZZ]10NS11 | 1 0ps ;; []1[-1]1 11 | 1 0ps ;; 15. 01 | 1 0ps,0 5ns)")) {
        CVeskFormula vesk;
        CString formula("old");
        EXPECT_TRUE(vesk.Parse((" \t\n" + row[0]).c_str())) << row[0];
        EXPECT_TRUE(vesk.Convert(formula)) << row[0];
        formula.TrimLeft();
        EXPECT_STREQ(formula, row[1].c_str()) << row[0];
    }
}

TEST(Vesk, UnreadableTexts) {
    CVeskFormula vesk;
    CString formula("old");
    EXPECT_FALSE(vesk.Convert(formula));
    EXPECT_STREQ(formula, "");
    for (const char* text : {"(010NS)", "(010NS)/CLK", "(010NS", "((010NS)2", "[1F", "0", "010NS1",
                             "01.", "010NS(", "010NS 1", "[1F]", "0 1"}) {
        EXPECT_FALSE(vesk.Parse(text)) << text;
    }
    for (const char* text : {"", " \t", "/CLK", "1 0 ", "[ZZ]1", "((01))1"}) {
        formula = "old";
        EXPECT_TRUE(vesk.Parse(text)) << text;
        EXPECT_FALSE(vesk.Convert(formula)) << text;  // nothing was read
        EXPECT_STREQ(formula, "") << text;
    }
    ASSERT_TRUE(vesk.Parse("01/CLK"));
    ASSERT_TRUE(vesk.Parse("11"));  // nothing of the text before is left
    ASSERT_TRUE(vesk.Convert(formula));
    EXPECT_STREQ(formula, "1 0ps");
}

// text | maximum | within
TEST(Vesk, MaxRepeatCount) {
    for (const auto& row : Table(R"(
        (010NS)5 | 4 | 0 ;; (010NS)5 | 5 | 1 ;; (010NS)5 | -1 | 1 ;; (010NS)5 | 0 | 0
        01 | 0 | 0 ;; 01 | 1 | 1 ;; _ | 0 | 0 ;; ((01)7 01)2 | 6 | 0 ;; ((01)7 01)2 | 7 | 1
        ((01))9 01 | 1 | 1 ;; (01)2147483647 | 2147483646 | 0 ;; (01)5/clk(01)9 | 5 | 1
        (01 | 0 | 1)")) {
        const int maximum = static_cast<int>(Int(row[1]));
        EXPECT_EQ(CheckVeskMaxRepeatCount(row[0].c_str(), maximum), row[2] == "1") << row[0];
    }
}

TEST(Vesk, RefusesWhatUnrollsTooFar) {
    const auto converts = [](const std::string& text) {
        CVeskFormula vesk;
        CString formula;
        return vesk.Parse(text.c_str()) && vesk.Convert(formula);
    };
    EXPECT_FALSE(converts("((((1 1ns)4000)4000)4000)4000"));
    EXPECT_FALSE(converts("(((((((01)99999)99999)99999)99999)99999)99999)99999"));
    EXPECT_FALSE(converts("((((01)0)65536)257)1"));  // empty entries count as well
    EXPECT_FALSE(converts("(((()9)65536)257)1"));
    EXPECT_FALSE(converts("((11)4096)4097"));
    EXPECT_TRUE(converts("((11)4096)16"));
    EXPECT_FALSE(converts("((11)2147483647)2147483647"));

    const auto nested = [](std::size_t depth) {
        std::string text = std::string(depth, '(') + "11";
        for (std::size_t i = 0; i < depth; ++i) {
            text += ")1";
        }
        return text;
    };
    EXPECT_TRUE(converts(nested(256)));
    EXPECT_FALSE(converts(nested(257)));
    EXPECT_FALSE(converts(nested(100'000)));
    CheckVeskMaxRepeatCount(nested(100'000).c_str(), 1);  // does not exhaust the stack
}

// What a text unrolls to: values with their durations in ps, an empty value for an empty entry.
using Entries = std::vector<std::pair<std::string, std::int64_t>>;

// Writes random items and gives what they unroll to.
Entries RandomItems(Random& random, int depth, std::string& text) {
    static constexpr const char* kItems =
        "010ns|0|10000 ;; 15|1|5000 ;; x1.5NS|X|1500 ;; H.25us|1|250000 ;; l3ps|0|3 ;; Ums|1|0 ;; "
        "-7.|-|7000 ;; Z2.5ms|Z|2500000000 ;; [1f]0|16#1F|0 ;; [00]40ns|16#0|40000 ;; "
        "[123456789ab]1us|16#456789AB|1000000 ;; .1|X|1000 ;; ?0.0005ns|?|0 ;; [zz]5|_|-1 ;; "
        "0|_|-1";
    static const auto items = Table(kItems);
    Entries entries;
    for (std::size_t i = random.Below(5) + 1; i > 0; --i) {
        if (depth == 0 || random.OneIn(2)) {
            const auto& item = items[random.Below(items.size())];
            text += item[0] + (random.OneIn(2) ? "\t" : " ");
            if (item[2] != "-1") {  // else it is left out
                entries.emplace_back(item[1], Int(item[2]));
            }
            continue;
        }
        const std::size_t count = random.Below(4);
        text += "(";
        const Entries inside = RandomItems(random, depth - 1, text);
        text += ")" + (count > 0 || random.OneIn(2) ? std::to_string(count) + " " : " ");
        for (std::size_t n = 0; n < count; ++n) {
            entries.insert(entries.end(), inside.begin(), inside.end());
        }
        if (count == 0 || inside.empty()) {
            entries.emplace_back();
        }
    }
    return entries;
}

std::string ScaledTime(std::int64_t time) {
    unsigned unit = 1;
    while (time != 0 && unit < 7 &&
           NaiveConvert(NaiveConvert(time, unit, unit + 1), unit + 1, unit) == time) {
        time = NaiveConvert(time, unit, unit + 1);
        ++unit;
    }
    return std::to_string(time) + kUnitNames.at(unit);
}

TEST(Vesk, RandomTreesUnrollAsTheyWereMade) {
    for (std::uint32_t seed = 1; seed <= 3000; ++seed) {
        Random random(seed);
        std::string text;
        std::string expected;
        std::int64_t now = 0;
        const Entries entries = RandomItems(random, 4, text);
        for (const auto& [value, duration] : entries) {
            expected += (value.empty() ? "" : value + " " + ScaledTime(now)) + ",";
            now += duration;
        }
        expected.resize(expected.size() - (entries.empty() ? 0 : 1));
        if (random.OneIn(3)) {
            text += "/cLk";
            expected += " -r " + ScaledTime(now);
        }
        SCOPED_TRACE(testing::Message() << "seed " << seed << " text " << text);
        CVeskFormula vesk;
        CString formula;
        ASSERT_TRUE(vesk.Parse(text.c_str()));
        ASSERT_EQ(vesk.Convert(formula), !entries.empty());
        ASSERT_EQ(std::string(formula), entries.empty() ? "" : expected);
    }
}

}  // namespace
}  // namespace corv::test
