#include "corv/stimulus/stimulus.h"

#include "corv/stimulus/stim_iterator.h"
#include "tests/support/test.h"

namespace corv::test {
namespace {

constexpr std::int64_t kMax = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kMin = std::numeric_limits<std::int64_t>::min();

// default unit | formula | start | first events, -1 behind the last | time=value | normal form
const char* const kTable = R"(
1 | 0 0, 1 10, 0 20 -r 40 | 0 | 0 10 20 40 50 60 80 | -1= 0=0 9=0 10=1 19=1 20=0 49=0 50=1 | 0 0, 1 10, 0 20 -r 40
1 | 0 0, 1 10, 0 20 -r 40 | 100 | 100 110 120 140 150 | 99= 100=0 115=1 | 0 0, 1 10, 0 20 -r 40
1 | 0 0 1 10 0 20 -r 40 | 0 | 0 10 20 40 | 10=1 | 0 0, 1 10, 0 20 -r 40
1 | 0 5, 1 15 | 0 | 5 15 -1 | 4= 5=0 9223372036854775807=1 | 0 5, 1 15
1 | 1 @5, 0 10 | 0 | 10 -1 | 5= 9= 10=0 | 1 @5, 0 10
1 | 0 0, 1 @25, 0 30 | 0 | 0 25 30 -1 | 24=0 27=1 30=0 | 0 0, 1 @25, 0 30
1 | 0 0, 1 10, 0 20 -r 40, 1 @45 | 0 | 0 10 20 40 45 50 60 80 | 44=0 47=1 62=0 | 0 0, 1 10, 0 20, 1 @45 -r 40
1 | 0 0, 1 10 -r 40, 1 @50 | 0 | 0 10 40 50 80 | 45=0 50=1 | 0 0, 1 10, 1 @50 -r 40
1 | 0 0, 1 10, X @10 | 0 | 0 10 -1 | 9=0 10=X | 0 0, 1 10, X @10
1 | x 0 y | 0 | 0 -1 | 0=x 7=x | x 0, y
1 | x 0 y , 1 10 | 0 | 0 1 -1 | 0=x 1=y | x 0, y 1, 10
1 | 0 0, 1 10ns, 0 20 ns -r 40ns | 0 | 0 10000 20000 40000 | 10000=1 | 0 0, 1 10000, 0 20000 -r 40ns
1 | 0 0, 1 1.5NS, 0 2.25 ns -R 0.5 us | 0 | 0 1500 2250 500000 | 1500=1 | 0 0, 1 1500, 0 2250 -r 500ns
1 | 0 0, 1 1.0005ns, 0 1.9, X 999fs | 0 | 0 1 1000 -1 | 0=0 1=0 1000=1 | 0 0, 1 1000, 0 1, X 0
2 | 0 0, 1 10, 0 2ps -r 40 | 0 | 0 2 10000 40000 | 2=0 10000=1 | 0 0, 1 10000, 0 2 -r 40ns
2 | 0 0 | 3 | 3000 -1 | 2999= 3000=0 | 0 0
1 | 1 10, 0 5 | 0 | 10 -1 | 9= 10=1 12=1 | 1 10, 0 5
1 | 0 0, 1 10, 0 20 -r 15 | 0 | 0 10 20 25 35 40 | 14=1 15=0 25=1 | 0 0, 1 10, 0 20 -r 15
1 | 0 0, 1 10 -r -40 | 0 | 0 10 40 50 | 49=0 50=1 | 0 0, 1 10 -r -40
1 | 0 0 -r 10 1 5 -repeat 20 | 0 | 0 5 20 25 | 25=1 | 0 0, 1 5 -r 20
1 | 0 0, 1 5 -r @40 | 0 | 0 5 -1 | 49=1 | 0 0, 1 5
1 | 0 0 -r abc | 0 | 0 -1 | 9=0 | 0 0
1 | 0 0, 1 abc, Z 10xs | 0 | 0 -1 | 9=0 | 0 0, 1 0, Z 0
1 | 0 0, 1 @, Z @ ns | 0 | 0 -1 | 0=1 | 0 0, 1 @0, Z @0
1 | 0 0 s 10 | 0 | 0 10 -1 | 10=s | 0 0, s 10
1 | 0 0 10ns ns, 1 5 | 0 | 0 5 -1 | 5=1 | 0 0, 10ns 0, 1 5
1 | "a, b" 0, '1' 5, (a,(b c)) 9, [x 11 | 0 | 0 5 9 11 -1 | 5='1' 11=[x | "a, b" 0, '1' 5, (a,(b c)) 9, [x 11
1 | '1'10, ""20 | 0 | 10 20 -1 | 10='1' 20="" | '1' 10, "" 20
1 | 0 0,, , 1 10, , | 0 | 0 10 -1 | 10=1 | 0 0, 1 10
1 | 0 0, (1 10, X 20, | 0 | 0 -1 | 30=0 | 0 0, (1 10, X 20,
1 | 1 @5, 0 @20 | 10 | 20 -1 | 9= 10=1 20=0 | 1 @5, 0 @20
1 | 1 @5, 0 @20 -r 7 | 0 | 5 20 -1 | 4= 5=1 25=0 | 1 @5, 0 @20 -r 7
1 | 0 0, 1 9007199254740993, X 9007199254740993fs | 0 | 0 9007199254740 9007199254740993 | 9007199254740992=X | 0 0, 1 9007199254740993, X 9007199254740
1 | 0 0, 1 9200000000000000000 | 0 | 0 9200000000000000000 -1 | 9200000000000000000=1 | 0 0, 1 9200000000000000000
1 | 0 0, 1 9300000000000000000, X 99999999999999999999999999 | 0 | 0 -1 | 9=0 | 0 0, 1 0, X 0
1 | 0 0, 1 10 -r 40 | 9223372036854775762 | 9223372036854775762 9223372036854775772 9223372036854775802 -1 | 9223372036854775807=0 | 0 0, 1 10 -r 40
1 | 0 10, 1 20 | 9223372036854775800 | -1 | 9223372036854775807= | 0 10, 1 20
1 | 0 0, 1 10 -r 40 | -1 | -1 9 39 | 0=0 38=1 | 0 0, 1 10 -r 40
1 | 0 0, 1 1 -r 2 | -9000000000000000000 | -9000000000000000000 | 9223372036854775807=1 | 0 0, 1 1 -r 2
1 | ab/VESK (010NS110NS)2/clk | 0 | 0 10000 20000 30000 40000 | 35000=1 | 0 0, 1 10000, 0 20000, 1 30000 -r 40ns
1 | /vesk 110NS(010NS)0 010NS | 0 | 0 10000 -1 | 10000=0 | 1 0, 0 10000
)";

TEST(Stimulus, EventsValuesAndNormalForm) {
    for (const auto& row : Table(kTable)) {
        SCOPED_TRACE(row[1] + "  from " + row[2]);
        const std::int64_t start = Int(row[2]);
        CStimulus stimulus(static_cast<unsigned>(Int(row[0])), 1);
        ASSERT_EQ(stimulus.Create(row[1].c_str(), start), 1);
        for (int round = 0; round < 2; ++round) {  // writing the formula changes no answer
            std::int64_t time = start < 0 ? start - 1 : -1;
            for (const std::string& event : Split(row[3], ' ')) {
                time = stimulus.GetNextEventTime(time);
                EXPECT_EQ(time, Int(event));
            }
            for (const std::string& pair : Split(row[4], ' ')) {
                const std::string expected = pair.substr(pair.find('=') + 1);
                CString value("none");
                EXPECT_EQ(stimulus.GetValue(Int(pair), value), expected.empty() ? 0 : 1) << pair;
                EXPECT_EQ(std::string(value), expected.empty() ? "none" : expected) << pair;
            }
            CString normal("old");
            stimulus.GenerateFormula(normal);
            EXPECT_STREQ(normal, row[5].c_str());
        }
    }
}

TEST(Stimulus, LastTimeHasNoNextEvent) {
    CStimulus stimulus;
    ASSERT_EQ(stimulus.Create("0 0, 1 1 -r 2", 0), 1);
    EXPECT_EQ(stimulus.GetNextEventTime(kMax - 1), kMax);
    EXPECT_EQ(stimulus.GetNextEventTime(kMax), -1);
    EXPECT_EQ(stimulus.GetNextEventTime(kMin), 0);
}

TEST(Stimulus, RefusedFormulas) {
    std::vector<std::string> formulas{" ", " \t\n", "/vesk "};
    for (const auto& row : Table(R"(
        _ ;; , ;; ,0 0 ;; -r 40 ;; -r ;; 0 -5 ;; 0 0, 1 -10ns ;; 0 @-1 ;; 1 -1hr ;; /vesk
        /vesk (010NS) ;; /vesk (010NS) 110NS ;; /vesk (010NS ;; /vesk 0 1 ;; /vesk [1F
        /vesk 1. ;; /custom a.evt, sig ;; /CUSTOM ;; x \Counter ;; 0 0 /custom)")) {
        formulas.push_back(row[0]);
    }
    for (const std::string& text : formulas) {
        const char* const formula = text.c_str();
        CStimulus stimulus;
        CString value("old");
        ASSERT_EQ(stimulus.Create("1 0, 0 5 -r 10", 0), 1);
        EXPECT_EQ(stimulus.Create(formula, 0), 0) << formula;
        EXPECT_FALSE(stimulus.IsCustom()) << formula;
        EXPECT_EQ(stimulus.GetRepeatRate(), text == "-r 40" ? 40 : 0) << formula;
        ASSERT_EQ(stimulus.Create("1 0", 0), 1) << formula;
        EXPECT_EQ(stimulus.GetValue(0, value), 1);
        EXPECT_STREQ(value, "1");
    }
    CStimulus stimulus;
    CString text;
    EXPECT_EQ(stimulus.Create(nullptr, 0), 0);
    EXPECT_EQ(stimulus.GetCustom(), nullptr);
    EXPECT_EQ(stimulus.GetSignalTypeInfo(), nullptr);
    EXPECT_EQ(stimulus.Create("1 -1fs", 0), 1);  // cut to 0
    EXPECT_EQ(stimulus.Create("0 5, 1 15, X -1, Z 20", 0), 0);
    stimulus.GenerateFormula(text);
    EXPECT_STREQ(text, "0 5, 1 15");  // what was read before the failure stays
    EXPECT_EQ(stimulus.GetNextEventTime(5), 15);
}

TEST(Stimulus, NoRepeatAndDestroy) {
    CStimulus stimulus(2, 1);
    CString text("old");
    ASSERT_EQ(stimulus.Create("0 0, 1 1 -r 2ns", 1), 1);
    EXPECT_EQ(stimulus.GetRepeatRate(), 2000);
    EXPECT_EQ(stimulus.GetNextEventTime(2000), 3000);
    stimulus.NoRepeat();
    EXPECT_EQ(stimulus.GetRepeatRate(), 0);
    EXPECT_EQ(stimulus.GetNextEventTime(2000), -1);
    CStimulus in_ns(2, 2);  // the period in ns
    ASSERT_EQ(in_ns.Create("0 0 -r 5000ps", 0), 1);
    EXPECT_EQ(in_ns.GetRepeatRate(), 5);
    stimulus.Destroy();
    EXPECT_EQ(stimulus.GetNextEventTime(-1), -1);
    EXPECT_EQ(stimulus.GetValue(2000, text), 0);
    EXPECT_STREQ(text, "old");
    stimulus.GenerateFormula(text);
    EXPECT_STREQ(text, "");
}

// value | time, unit | absolute | result | text with time
TEST(SimpleStimulus, CreateAndWrite) {
    CSimpleStimulus fresh;
    CString text;
    fresh.GenerateFormula(text);
    EXPECT_STREQ(text, " 0");
    for (const auto& row : Table(R"(
        1      | 10 | 3 | 0 | 1 | 1 10us
        1      | 10 | 3 | 1 | 1 | 1 @10us
        (a, b) | 0  | 1 | 0 | 1 | (a, b) 0
        0      | -1 | 1 | 0 | 0 | 0 18446744073709551615
        0      | -1 | 0 | 0 | 1 | 0 18446744073709551615fs)")) {
        CSimpleStimulus element;
        const TTimeUnit<std::int64_t> time(Int(row[1]), static_cast<unsigned>(Int(row[2])));
        const int absolute = static_cast<int>(Int(row[3]));
        EXPECT_EQ(element.Create(row[0].c_str(), time, absolute), Int(row[4])) << row[5];
        EXPECT_EQ(element.Absolute(), absolute);
        element.GenerateFormula(text);
        EXPECT_STREQ(text, row[5].c_str());
        element.IncludeTime(false);
        element.GenerateFormula(text);
        EXPECT_STREQ(text, row[0].c_str());
        EXPECT_EQ(element.Create("", time, 1), 0);
        element.GetValue(text);
        EXPECT_STREQ(text, "");  // stored although refused
    }
}

TEST(StimIterator, WalksStoredElementsFromTheFirstRelativeOne) {
    CStimulus stimulus;
    ASSERT_EQ(stimulus.Create("X @3, 0 5, 1 15ps, y", 0), 1);
    CStimIterator iterator(&stimulus);
    CStimIterator other(nullptr);
    EXPECT_EQ(other.Next(), nullptr);
    other = iterator;
    for (CStimIterator* walk : {&iterator, &other, &iterator}) {
        for (const auto& row : Table("X|3|1\n0|0|0\n1|10|0\ny|-5|0")) {
            const CSimpleStimulus* element = walk->Next();
            ASSERT_NE(element, nullptr);
            CString value;
            element->GetValue(value);
            EXPECT_STREQ(value, row[0].c_str());
            EXPECT_EQ(element->GetTime(), Int(row[1]));
            EXPECT_EQ(element->Absolute(), Int(row[2]));
        }
        EXPECT_EQ(walk->Next(), nullptr);
        EXPECT_EQ(walk->Next(), nullptr);
        walk->Reset();
    }
}

}  // namespace
}  // namespace corv::test
