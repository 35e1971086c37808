#include "corv/stimulators/clock.h"

#include "tests/support/test.h"

namespace corv::test {
namespace {

// Settings are written as: rate value, unit, is period, offset, duty cycle, starts low.
CClock Make(const std::string& settings) {
    const auto field = Split(settings, ' ');
    CClock clock;
    clock.SetRateValue(std::stod(field[0]));
    clock.SetRateUnit(static_cast<std::uint8_t>(Int(field[1])));
    clock.SetRateType(field[2] == "1");
    clock.SetRateOffset(Int(field[3]));
    clock.SetRateCycle(static_cast<std::uint8_t>(Int(field[4])));
    clock.SetStartLow(field[5] == "1");
    return clock;
}

std::string Show(const CClock& clock) {
    std::ostringstream out;
    out << clock.GetRateValue() << ' ' << int{clock.GetRateUnit()} << ' ' << clock.GetRateType()
        << ' ' << clock.GetRateOffset() << ' ' << int{clock.GetRateCycle()} << ' '
        << clock.IsStartLow();
    return out.str();
}

// settings | record | settings read back from it
TEST(Clock, RecordsWriteAndReadBack) {
    EXPECT_EQ(Show(CClock()), "10 1 0 0 50 0");
    for (const auto& row : Table(R"(
        10 1 0 0 50 0          | 10.000000;1;0;0;50;0          | 10 1 0 0 50 0
        2.5 255 1 -5 255 1     | 2.500000;255;1;-5;255;1       | 2.5 255 1 -5 255 1
        0 0 0 4294967296 0 0   | 0.000000;0;0;0;0;0            | 0 0 0 0 0 0
        1 2 1 6442450944 100 0 | 1.000000;2;1;-2147483648;100;0 | 1 2 1 -2147483648 100 0
        -0.0000004 2 1 9223372036854775807 1 1 | -0.000000;2;1;-1;1;1 | -0 2 1 -1 1 1)")) {
        CString record("old");
        Make(row[0]).StreamOut(record);
        EXPECT_STREQ(record, row[1].c_str());
        CClock clock = Make("99 99 1 99 99 1");
        EXPECT_TRUE(clock.StreamIn(record)) << row[1];
        EXPECT_EQ(Show(clock), row[2]);
    }
}

// record | complete | settings afterwards
// Rates that no double holds are infinite or nothing.
TEST(Clock, ReadsRatesPastTheRange) {
    const std::string digits(400, '9');
    const double infinity = std::numeric_limits<double>::infinity();
    for (const auto& [text, rate] : std::vector<std::pair<std::string, double>>{
             {"1e400", infinity},
             {" -1e400x", -infinity},
             {digits, infinity},
             {"0." + std::string(400, '0') + "1", 0},
             {"0." + std::string(400, '0') + "1e800", infinity},
             {digits + "e-900", 0},
             {"1e-99999999999999999999", 0},
             {"+1e99999999999999999999", infinity},
             {"1e308", 1e308}}) {
        CClock clock;
        EXPECT_FALSE(clock.StreamIn(text.c_str()));  // the other fields are missing
        EXPECT_EQ(clock.GetRateValue(), rate) << text;
    }
}

TEST(Clock, ReadsRecordsFieldByField) {
    for (const auto& row : Table(R"(
        5;2 | 0 | 5 2 0 0 50 0 ;; 1;;2;0;0;50;1 | 1 | 1 2 0 0 50 1
        ;;1;2;3;4;5;6; | 1 | 1 2 1 4 5 1 ;; 1;2;1;4;5;6;7;8 | 1 | 1 2 1 4 5 1
        1;2;1;4;5 | 0 | 1 2 1 4 5 0 ;; _ | 0 | 10 1 0 0 50 0 ;; ;;; | 0 | 10 1 0 0 50 0
        x;y;z;a;b;c | 1 | 0 0 0 0 0 0 ;; 2.5e1x; 3x;-1; -7x;+4 ;1 | 1 | 25 3 1 -7 4 1
        1;257;256;9223372036854775807;511;256 | 1 | 1 1 1 9223372036854775807 255 0)")) {
        CClock clock;
        EXPECT_EQ(clock.StreamIn(row[0].c_str()), row[1] == "1") << row[0];
        EXPECT_EQ(Show(clock), row[2]) << row[0];
    }
    CClock clock;
    EXPECT_FALSE(clock.StreamIn(nullptr));
    EXPECT_EQ(Show(clock), Show(CClock()));
    EXPECT_TRUE(clock.StreamIn(
        (std::string(1'000'000, '9') + ";9e99;1;" + std::string(99, '9') + ";1;1").c_str()));
}

// settings | target unit | formula | formula with the offset handed out
TEST(Clock, Formulas) {
    for (const auto& row : Table(R"(
        100 1 1 0 50 0 | 1 | 1 0, 0 50 -r 100 | 1 0, 0 50 -r 100
        100 1 1 30 25 1 | 1 | 0 30, 1 55 -r 100 | 0 0, 1 25 -r 100
        10 2 1 7 50 0 | 1 | 1 7, 0 5007 -r 10000 | 1 0, 0 5000 -r 10000
        100 2 0 0 50 0 | 1 | 1 0, 0 5000 -r 10000 | 1 0, 0 5000 -r 10000
        100 2 0 0 50 0 | 2 | 1 0, 0 5 -r 10 | 1 0, 0 5 -r 10
        99.9 1 1 0 50 0 | 1 | 1 0, 0 49 -r 99 | 1 0, 0 49 -r 99
        100 1 1 0 0 0 | 1 | 1 0, 0 0 -r 100 | 1 0, 0 0 -r 100
        100 1 1 0 200 0 | 1 | 1 0, 0 200 -r 100 | 1 0, 0 200 -r 100
        100 1 1 -40 50 0 | 1 | 1 -40, 0 10 -r 100 | 1 0, 0 50 -r 100
        0 2 0 3 50 0 | 1 | 1 3, 0 3 -r 0 | 1 0, 0 0 -r 0
        100 9 1 3 50 0 | 1 | 1 3, 0 3 -r 0 | 1 0, 0 0 -r 0
        100 1 1 10000000000 50 0 | 1 | 1 10000000000, 0 10000000050 -r 100 | 1 0, 0 50 -r 100
        inf 1 1 0 50 0 | 1 | 1 0, 0 9223372036854775807 -r 9223372036854775807 | _
        1e-300 0 0 0 50 1 | 0 | 0 0, 1 9223372036854775807 -r 9223372036854775807 | _
        -1e30 1 1 0 50 0 | 1 | 1 0, 0 -9223372036854775808 -r -9223372036854775808 | _)")) {
        const CClock clock = Make(row[0]);
        const auto unit = static_cast<std::uint8_t>(Int(row[1]));
        CString text("old");
        std::int64_t offset = 77;
        EXPECT_TRUE(clock.GenerateFormula(text, unit, nullptr));
        EXPECT_STREQ(text, row[2].c_str());
        EXPECT_TRUE(clock.GenerateFormula(text, unit, &offset));
        EXPECT_STREQ(text, (row[3].empty() ? row[2] : row[3]).c_str());
        EXPECT_EQ(offset, clock.GetRateOffset());
    }
    for (const char* extreme : {"nan 1 1 9223372036854775807 255 1",
                                "1 1 1 9223372036854775807 255 1", "nan 2 0 -5 200 0"}) {
        CString text;
        EXPECT_TRUE(Make(extreme).GenerateFormula(text, 1, nullptr));
        EXPECT_FALSE(text.IsEmpty());
    }
}

}  // namespace
}  // namespace corv::test
