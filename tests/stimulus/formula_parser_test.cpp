#include "corv/stimulus/formula_parser.h"

#include "corv/stimulators/counter.h"
#include "corv/stimulus/stimulus.h"
#include "tests/support/test.h"

namespace corv::test {
namespace {

class FormulaParser : public testing::Test {
protected:
    FormulaParser() { ResetCounters(); }
    ~FormulaParser() override { ResetCounters(); }
};

std::vector<std::string> Texts(const CStringArray& list) {
    std::vector<std::string> out;
    for (int i = 0; i < list.GetSize(); ++i) {
        out.emplace_back(list[i]);
    }
    return out;
}

// split mode | width | formula | result | formulas of the elements, none when the list is kept
const char* const kTable = R"(
1  | 4 | "01XZ" 0, "1X10" 10 -r 20      | 1 | '0' 0,'1' 10 -r 20 ~ '1' 0,'X' 10 -r 20 ~ 'X' 0,'1' 10 -r 20 ~ 'Z' 0,'0' 10 -r 20
-7 | 4 | 01XZ 0, (1X10) 10, [ZZZZ] 20   | 1 | 0 0,1 10,Z 20 ~ 1 0,X 10,Z 20 ~ X 0,1 10,Z 20 ~ Z 0,0 10,Z 20
1  | 2 | '1X' 0, {LH} 5                 | 1 | 1 0,L 5 ~ X 0,H 5
1  | 2 | "01" @5, "10" 10ns -REPEAT 20 ns | 1 | '0' @5,'1' 10000 -r 20ns ~ '1' @5,'0' 10000 -r 20ns
1  | 2 | 01 5, 10 15 11                 | 1 | 0 5,1 15,1 ~ 1 5,0 15,1
1  | 1 | x 0 y                          | 1 | x 0,y
1  | 3 | "0 1" 0, ",-(" 5 -r 9          | 1 | '0' 0,',' 5 -r 9 ~ ' ' 0,'-' 5 -r 9 ~ '1' 0,'(' 5 -r 9
1  | 4 | 16#A 0, "16#1F" 5, 10#-2 9     | 1 | 1 0,'1' 5,1 9 ~ 0 0,'1' 5,1 9 ~ 1 0,'1' 5,1 9 ~ 0 0,'1' 5,0 9
1  | 4 | 2#10# 0, (8#7) 5, 10#3 6       | 1 | 0 0,0 5,0 6 ~ 0 0,1 5,0 6 ~ 1 0,1 5,1 6 ~ 0 0,1 5,1 6
1  | 4 | 10 0, "1" 5, 110101 6          | 1 | 0 0,'0' 5,0 6 ~ 0 0,'0' 5,1 6 ~ 1 0,'0' 5,0 6 ~ 0 0,'1' 5,1 6
1  | 4 | "01XZ" 0, "1X1" 5, "1111" 9 -r 20 | 0 | '0' 0 ~ '1' 0 ~ 'X' 0 ~ 'Z' 0
1  | 4 | 0101 0, 12 5                   | 0 | 0 0 ~ 1 0 ~ 0 0 ~ 1 0
1  | 2 | 16#G 0                         | 0 | _
1  | 2 | "" 0                           | 0 | _
1  | 2 | 01 0, () 5                     | 0 | 0 0 ~ 1 0
1  | 0 | 01 0, 16#F 5                   | 1 | _
0  | 0 | (a,b) 0                        | 1 | _
1  | 0 | 1X 0                           | 0 | _
1  | -3 | 01 0                          | 0 | _
0  | -1 | (a,b) 0                       | 1 | _
1  | -2147483648 | 16#F 0               | 1 | _
1  | 2 | /vesk 010NS[2]5NS/clk          | 1 | 0 0,1 10000 -r 15ns ~ 0 0,0 10000 -r 15ns
0  | 3 | (red,green,blue) 0, (blue,red,green) 5 | 1 | red 0,blue 5 ~ green 0,red 5 ~ blue 0,green 5
0  | 2 | ((a,b),(c d)) 0, ( "x, y" ,'z' ) 5 -r 9 | 1 | (a,b) 0,"x, y" 5 -r 9 ~ (c d) 0,'z' 5 -r 9
0  | 3 | "red green	blue" 0, (a,,b , c,) 5 | 1 | red 0,a 5 ~ green 0,b 5 ~ blue 0,c 5
0  | 2 | ((a,(b)),[(c),{d}]) 7          | 1 | (a,(b)) 7 ~ [(c),{d}] 7
0  | 3 | (a,b) 0, (c) 5 -r 10           | 1 | a 0,c 5 -r 10 ~ b 0 -r 10 ~ -r 10
0  | 2 | (a,b,c) 0 (d)                  | 1 | a 0,d ~ b 0
0  | 4 | 16#A 0, (a,b,c,d) 5, 2#1 6     | 1 | 1 0,a 5,0 6 ~ 0 0,b 5,0 6 ~ 1 0,c 5,0 6 ~ 0 0,d 5,1 6
0  | 2 | ((a),16#F) 0, 01 5             | 1 | (a) 0,01 5 ~ 16#F 0
0  | 2 | (,) 0                          | 1 | _ ~ _
1  | 2 | _                              | 0
1  | 2 | -r 40                          | 0
1  | 2 | 01 0, 10 -5                    | 0
1  | 2 | ,01 0                          | 0
1  | 2 | /vesk (010NS)                  | 0
1  | 2 | /CUSTOM Trace.EVT              | 0
0  | 2 | \Counter\TYPE\1                | 0
1  | 1048577    | 01 0                  | 0
0  | 2147483647 | (a,b) 0               | 0)";

TEST_F(FormulaParser, CutsIntoCharactersAndWords) {
    for (const auto& row : Table(kTable)) {
        SCOPED_TRACE(row[2] + " in mode " + row[0] + ", width " + row[1]);
        const int width = static_cast<int>(Int(row[1]));
        for (const bool simple : {false, true}) {
            CStringArray list;
            list.Add("kept");
            const auto mode = static_cast<int>(Int(row[0]));
            const int result = simple
                                   ? CSimpleFormulaParser().Run(row[2].c_str(), list, width, mode)
                                   : CFormulaParser().Run(row[2].c_str(), list, width, mode);
            EXPECT_EQ(result, Int(row[3]));
            std::vector<std::string> expected{"kept"};
            if (row.size() > 4) {
                expected = Split(row[4], '~');
                expected.resize(static_cast<std::size_t>(std::max(width, 0)));
                std::replace(expected.begin(), expected.end(), std::string("_"), std::string());
            }
            EXPECT_EQ(Texts(list), expected);
        }
    }
    CStringArray list;
    list.Add("kept");
    EXPECT_EQ(CFormulaParser().Run(nullptr, list, 1, 0), 0);
    EXPECT_EQ(CSimpleFormulaParser().Run(nullptr, list, 1, 0), 0);
    EXPECT_EQ(CCounterFormulaParser().Run(nullptr, list, 1, 0), 0);
    EXPECT_EQ(CCounterFormulaParser().Run("", list, 1, 0), 0);
    const char* counter =
        "\\counter\\TYPE\\1\\DIR\\1\\RADIX\\2\\START\\0\\INC\\1\\PERIOD\\5\\REV\\0";
    EXPECT_EQ(CSimpleFormulaParser().Run(counter, list, 1, 0), 0);  // writes back no text
    EXPECT_EQ(Texts(list), std::vector<std::string>{"kept"});
    EXPECT_EQ(CFormulaParser().Run("( 1) 0", list, 2, 1), 1);
    EXPECT_EQ(Texts(list), (std::vector<std::string>{"  0", "1 0"}));  // a blank is a character
}

TEST_F(FormulaParser, WideVectors) {
    CStringArray list;
    EXPECT_EQ(CFormulaParser().Run("10#1", list, kMaxVectorWidth, 0), 1);
    EXPECT_EQ(list.GetSize(), kMaxVectorWidth);
    EXPECT_STREQ(list[kMaxVectorWidth - 2], "0");
    EXPECT_STREQ(list[kMaxVectorWidth - 1], "1");
    // past 64 digits a bit string is no number any more, and has to fill the width
    const std::string bits = "1" + std::string(70, '0');
    EXPECT_EQ(CFormulaParser().Run(bits.c_str(), list, 72, 1), 0);
    EXPECT_EQ(CFormulaParser().Run(bits.c_str(), list, 71, 1), 1);
    EXPECT_STREQ(list[0], "1");
    EXPECT_STREQ(list[70], "0");
}

// Vector formulas with what each value gives to each element.
class RandomVector {
public:
    RandomVector(Random& random, int width, int split_mode)
        : random_(random), width_(static_cast<std::size_t>(width)), split_mode_(split_mode) {}

    std::string Formula() {
        static constexpr const char* kTimes[] = {" @7",  " 3ns",  " 1.5ns", " 2 NS",
                                                 " abc", " @2ns", " 0999",  ""};
        std::string out;
        const bool repeats = random_.OneIn(2);
        for (std::size_t count = 1 + random_.Below(12); count > 0; --count) {
            out += Value();
            const std::string time = random_.OneIn(3) ? random_.Pick(kTimes) : "";
            // "-r" behind a value is its time
            out += time.empty() && (count == 1 || random_.OneIn(2))
                       ? " " + std::to_string(random_.Below(200))
                       : time;
            out += random_.OneIn(9) ? ",\n" : ",";
        }
        return out + (repeats ? "-r " + std::to_string(random_.Below(300)) + "ps" : "");
    }

    // The values of all elements joined, as the vector's value stands for them.
    const std::string& Joined(const std::string& value) const { return joined_.at(value); }

private:
    std::string Characters(const char* alphabet, std::size_t size) {
        std::string out;
        for (std::size_t i = 0; i < size; ++i) {
            out += alphabet[random_.Below(std::string(alphabet).size())];
        }
        return out;
    }

    std::string Keep(const std::string& value, const std::string& joined) {
        joined_[value] = joined;
        return value;
    }

    std::string Value() {
        if (random_.OneIn(4)) {
            return Number();
        }
        if (split_mode_ != 0) {
            const std::string text = Characters("UX01ZWLH-", width_);
            const bool quoted = random_.OneIn(2);
            std::string joined;
            for (const char c : text) {
                joined += quoted ? std::string("'") + c + "'" : std::string(1, c);
            }
            return Keep(quoted             ? '"' + text + '"'
                        : random_.OneIn(2) ? text
                                           : '(' + text + ')',
                        joined);
        }
        std::string inner;
        std::string joined;
        for (std::size_t i = 0; i < width_; ++i) {
            static constexpr const char* kWords[] = {"red",      "(a,b)", "'0'",
                                                     "\"0 ,1\"", "-3",    "((x) y)"};
            const std::string word = random_.Pick(kWords);
            inner += (i == 0 ? "" : random_.Pick({",", ", ", "  ", " ,\t"})) + word;
            joined += word;
        }
        return Keep('(' + inner + ')', joined);
    }

    std::string Number() {
        const std::uint64_t number = random_.Bits() >> random_.Below(64);
        std::string digits;
        for (std::size_t i = width_; i-- > 0;) {
            digits += i < 64 && (number >> i & 1) != 0 ? '1' : '0';
        }
        const std::string plain = digits.substr(digits.size() - std::min<std::size_t>(width_, 64));
        if (split_mode_ != 0 && random_.OneIn(2)) {
            return Keep(plain, digits);
        }
        return Keep("10#" + std::to_string(static_cast<std::int64_t>(number)), digits);
    }

    Random& random_;
    std::size_t width_;
    int split_mode_;
    std::map<std::string, std::string> joined_;
};

// The stimuli of the elements, taken together, are the vector's stimulus at every event.
TEST_F(FormulaParser, ElementsReplayTheVector) {
    for (std::uint32_t seed = 1; seed <= 300; ++seed) {
        Random random(seed);
        const int width = static_cast<int>(1 + random.Below(random.OneIn(4) ? 80 : 9));
        const int mode = static_cast<int>(seed % 2);
        RandomVector vector(random, width, mode);
        const std::string formula = vector.Formula();
        SCOPED_TRACE(testing::Message()
                     << "seed " << seed << " width " << width << ": " << formula);
        const auto start = static_cast<std::int64_t>(random.Below(3) * 111);
        CStimulus whole;
        CStringArray list;
        std::vector<CStimulus> elements(static_cast<std::size_t>(width));
        ASSERT_EQ(whole.Create(formula.c_str(), start), 1);
        ASSERT_EQ(CFormulaParser().Run(formula.c_str(), list, width, mode), 1);
        ASSERT_EQ(list.GetSize(), width);
        for (int i = 0; i < width; ++i) {
            ASSERT_EQ(elements[static_cast<std::size_t>(i)].Create(list[i], start), 1) << list[i];
        }
        std::int64_t time = -1;
        for (int events = 0; events < 40 && (events == 0 || time >= 0); ++events) {
            const std::int64_t next = whole.GetNextEventTime(time);
            CString value;
            const bool has_value = whole.GetValue(time, value) == 1;
            std::string joined;
            for (const CStimulus& element : elements) {
                ASSERT_EQ(element.GetNextEventTime(time), next) << "after " << time;
                CString piece;
                ASSERT_EQ(element.GetValue(time, piece), has_value ? 1 : 0);
                joined += piece;
            }
            ASSERT_EQ(joined, has_value ? vector.Joined(std::string(value)) : "") << "at " << time;
            time = next;
        }
    }
}

TEST_F(FormulaParser, OutOfMemory) {
    const std::string quoted = '"' + std::string(40, 'X') + "\" 1000000000";
    const std::string words = "(" + std::string(30, 'a') + "," + std::string(30, 'b') + ") 5";
    const struct {
        std::string formula;
        int width;
        int mode;
    } rows[] = {
        {quoted + ", 10#-1 2000000000 -r 9", 40, 1}, {"16#F 5, 10#1 1000", 40, 0}, {words, 2, 0}};
    for (const auto& row : rows) {
        CStringArray complete;
        ASSERT_EQ(CSimpleFormulaParser().Run(row.formula.c_str(), complete, row.width, row.mode),
                  1);
        for (const bool simple : {false, true}) {
            CStringArray list;
            const auto run = [&] {
                return simple
                           ? CSimpleFormulaParser().Run(row.formula.c_str(), list, row.width,
                                                        row.mode)
                           : CFormulaParser().Run(row.formula.c_str(), list, row.width, row.mode);
            };
            FailEveryAllocation([&] { list.RemoveAll(); }, run,
                                [&](int result) {
                                    EXPECT_EQ(result, 0) << testing::PrintToString(Texts(list));
                                    EXPECT_EQ(run(), 1);
                                    EXPECT_EQ(Texts(list), Texts(complete));
                                });
            EXPECT_EQ(Texts(list), Texts(complete));
        }
    }
}

}  // namespace
}  // namespace corv::test
