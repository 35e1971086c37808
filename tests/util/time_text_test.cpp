#include "corv/util/time_text.h"

#include "corv/util/time_units.h"
#include "tests/support/test.h"

namespace corv::test {
namespace {

constexpr auto kUnits = {TimeUnit::Femtosecond, TimeUnit::Picosecond,  TimeUnit::Nanosecond,
                         TimeUnit::Microsecond, TimeUnit::Millisecond, TimeUnit::Second,
                         TimeUnit::Minute,      TimeUnit::Hour};

TEST(FormatTime, WritesTheLargestWholeUnit) {
    for (const auto& row : Table(R"(0|0ps ;; 1|1ps ;; 1500|1500ps ;; 35000|35ns ;; -2000|-2ns
        60000000000000|1min ;; 5400000000000000|90min ;; 7200000000000000000|2000hr
        9200000000000000000|9200000sec ;; 9223372036854775807|9223372036854775807ps
        -9223372036854775808|-9223372036854775808ps)")) {
        EXPECT_EQ(FormatTime(Int(row[0])), row[1]);
    }
}

TEST(FormatTime, WritesDecimalsOfAUnit) {
    for (const auto& row : Table(R"(1500|2|1.5ns ;; -1|2|-0.001ns ;; 0|0|0fs ;; 7|0|7000fs
        90000000000000|7|0.025hr ;; 1|6|0.000000000000016min ;; 2000|1|2000ps ;; 0|5|0sec
        -9223372036854775808|0|-9223372036854775808000fs ;; 5|8|_ ;; 5|4294967295|_)")) {
        const auto unit = static_cast<TimeUnit>(Int(row[1]));
        EXPECT_EQ(FormatTime(Int(row[0]), unit), row[2]);
    }
}

TEST(ParseTime, CountsEveryDigit) {
    for (const auto& row : Table(R"(0|0 ;; 10|10 ;; 10ns|10000 ;; +3 NS|3000 ;; -1.5us|-1500000
        2000fs|2 ;; 0fs|0 ;; 0.001ns|1 ;; 1.ps|1 ;; .5 sec|500000000000 ;; 0.025hr|90000000000000
        9007199254740993|9007199254740993 ;; 9007199.254740993sec|9007199254740993000
        9199999.999999999999sec|9199999999999999999 ;; 2555.5555hr|9199999800000000000
        9200000000000000000000fs|9200000000000000000 ;; -9200000sec|-9200000000000000000
        0000000000000000000000001ns|1000 ;; 1.00000000000000000000000000ns|1000
        0.000000000000277777777777777777777777777hr|_ ;; 0.01min|600000000000)")) {
        Problem problem{77, 77, "untouched"};
        const auto time = ParseTime(" \r\n" + row[0] + "\t", &problem);
        EXPECT_EQ(time.has_value(), !row[1].empty()) << row[0];
        EXPECT_EQ(time ? std::to_string(*time) : "", row[1]) << row[0];
        EXPECT_EQ(problem.sentence == "untouched", time.has_value()) << row[0];
    }
}

// text | position | length | a part of the sentence
TEST(ParseTime, SaysWhatIsWrong) {
    for (const auto& row : Table(R"(
        _|0|0|there is no time; write ;; ns|0|2|`ns` is not a time; write ;; -|0|1|not a time
        abc|0|3|not a time ;; @5|0|2|not a time ;; 10xs|2|2|unknown unit `xs`; did you mean `ns`?
        1e3|1|2|the units are fs, ps, ns, us, ms, sec, min and hr ;; 1,5ns|1|4|unknown unit `,5ns`
        -7 secs|3|4|did you mean `sec`? ;; 1 0|2|1|unknown unit `0` ;; 1.2.3|3|2|unknown unit `.3`
        1fs|0|3|not a whole number of picoseconds; write ;; 0.5|0|3|whole ;; 1.0005 ns|0|9|whole
        10001fs|0|7|whole ;; 2000.5fs|0|8|whole ;; 3000hr|0|6|past the range of 9.2e18ps
        9200000000000000001|0|19|past ;; -9200000000000000001|0|20|past
        9999999999999999999|0|19|past ;; 99999999999999999999999min|0|26|past
        9300000000000000000000fs|0|24|past)")) {
        Problem problem;
        EXPECT_EQ(ParseTime(row[0], &problem), std::nullopt) << row[0];
        EXPECT_EQ(ParseTime(row[0]), std::nullopt) << row[0];
        EXPECT_EQ(problem.position, static_cast<std::size_t>(Int(row[1]))) << row[0];
        EXPECT_EQ(problem.length, static_cast<std::size_t>(Int(row[2]))) << row[0];
        EXPECT_NE(problem.sentence.find(row[3]), std::string::npos) << problem.sentence;
    }
    Problem problem;
    EXPECT_EQ(ParseTime(std::string_view("1\0", 2), &problem), std::nullopt);
    EXPECT_EQ(ParseTime("  1xs ", &problem), std::nullopt);
    EXPECT_EQ(problem.position, 3U);
}

TEST(ParseTime, ReadsBackWhatIsWritten) {
    Random random(7);
    for (int i = 0; i < 20000; ++i) {
        const auto size = static_cast<std::int64_t>(random.Bits() >> (1 + random.Below(62)));
        const std::int64_t time = random.OneIn(2) ? -size : size;
        const bool in_range = size <= kMaxTime;
        ASSERT_EQ(ParseTime(FormatTime(time)), in_range ? std::optional(time) : std::nullopt);
        for (const TimeUnit unit : kUnits) {
            const std::string text = FormatTime(time, unit);
            if (unit <= TimeUnit::Second && in_range) {
                ASSERT_EQ(ParseTime(text), time) << text;
            }
            double number = 0;
            ASSERT_TRUE(TextToTime(text.c_str(), &number, nullptr) || !in_range) << text;
        }
    }
}

TEST(ParseTime, OutlivesMissingMemory) {
    Problem problem;
    FailEveryAllocation([] {}, [] { return FormatTime(kMaxTime - 1); },
                        [](const std::string& text) { EXPECT_EQ(text, ""); });
    FailEveryAllocation([] {},
                        [&] { return ParseTime("a long text that is not a time", &problem); },
                        [&](auto) { EXPECT_EQ(problem.sentence, "out of memory"); });
    EXPECT_NE(problem.sentence, "out of memory");
}

TEST(UnitNames, AreThoseOfTheIdentifiers) {
    ASSERT_EQ(TimeUnitNames().size(), kUnits.size());
    for (const TimeUnit unit : kUnits) {
        const auto id = static_cast<unsigned>(unit);
        EXPECT_EQ(TimeUnitNames()[id], UnitNameFromID(id));
        EXPECT_EQ(FormatTime(0, unit), "0" + std::string(TimeUnitNames()[id]));
    }
    for (unsigned unit = 0; unit <= FrequencyUnitNames().size(); ++unit) {
        EXPECT_EQ(PeriodFromFreq(1, unit, 1) > 0, unit < FrequencyUnitNames().size());
    }
    EXPECT_EQ(FrequencyUnitNames().back(), "THz");
}

}  // namespace
}  // namespace corv::test
