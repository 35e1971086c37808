#include "host/time_text.h"

#include "corv/stimulus/time_unit.h"
#include "corv/util/time_units.h"
#include "tests/support/test.h"

namespace corv::host {
namespace {

TEST(TimeText, ReadsWhatUsersWrite) {
    const auto rows = test::Table(R"(0|0 ;; 10|10 ;; 10ns|10000 ;; 1.5us|1500000
        +3 NS|3000 ;; 2000fs|2 ;; 0.001ns|1 ;; 1min|60000000000000 ;; .5 sec|500000000000
        9007199254740993|9007199254740993 ;; 9199999999999999ns|9199999999999999000 ;; 1.ps|1)");
    for (const auto& row : rows) {
        const TimeReading reading = ReadTime(" " + row[0] + "\t");
        EXPECT_EQ(reading.time, test::Int(row[1])) << row[0] << ": " << reading.problem;
    }
}

TEST(TimeText, SaysWhatIsWrong) {
    const auto rows = test::Table(R"(_|not a time ;; ns|not a time ;; 1e3|unit ;; 10xs|`ns`
        -1ns|before 0 ;; 1fs|whole number ;; 0.5|whole number ;; 1.0005ns|whole number
        3000hr|range ;; 1,5ns|not a time ;; 10 n s|unit ;; @5|not a time)");
    for (const auto& row : rows) {
        const TimeReading reading = ReadTime(row[0]);
        EXPECT_EQ(reading.time, std::nullopt) << row[0];
        EXPECT_NE(reading.problem.find(row[1]), std::string::npos)
            << row[0] << ": " << reading.problem;
    }
    EXPECT_EQ(ReadTime(std::string_view("1\0", 2)).time, std::nullopt);
}

TEST(TimeText, WritesTheLargestWholeUnit) {
    const auto rows =
        test::Table(R"(0|0ps ;; 1|1ps ;; 1500|1500ps ;; 2000|2ns ;; 60000000000000|1min
        9223372036854775807|9223372036854775807ps ;; 5400000000000000|90min)");
    for (const auto& row : rows) {
        EXPECT_EQ(TimeText(test::Int(row[0])), row[1]);
    }
    EXPECT_EQ(TimeText(90000000000000, 7), "0.025hr");
    EXPECT_EQ(TimeText(1, 6), "0.000000000000016min");  // cut, not rounded
}

TEST(TimeText, ReadsBackWhatItWrites) {
    test::Random random(7);
    for (int i = 0; i < 20000; ++i) {
        const auto time = static_cast<std::int64_t>(random.Bits() >> (1 + random.Below(62)));
        if (time > 9200000000000000000) {
            continue;
        }
        EXPECT_EQ(ReadTime(TimeText(time)).time, time);
        // Decimals are read through a double of 53 bits, a number of 15 digits fits one.
        for (unsigned unit = 0; unit <= 5 && time < 1000000000000000; ++unit) {
            EXPECT_EQ(ReadTime(TimeText(time, unit)).time, time) << TimeText(time, unit);
        }
    }
}

}  // namespace
}  // namespace corv::host
