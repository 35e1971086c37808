#include "corv/util/time_units.h"

#include "corv/stimulus/time_unit.h"
#include "tests/support/naive_time.h"
#include "tests/support/test.h"

namespace corv::test {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(TimeUnits, NamesAndIdentifiers) {
    for (unsigned unit = 0; unit < kUnitNames.size(); ++unit) {
        std::string name = kUnitNames[unit];
        EXPECT_STREQ(UnitNameFromID(unit), name.c_str());
        for (char& c : name) {
            EXPECT_EQ(UnitIDFromName(name.c_str()), static_cast<int>(unit)) << name;
            c = static_cast<char>(std::toupper(c));
        }
        EXPECT_EQ(UnitIDFromName(name.c_str()), static_cast<int>(unit)) << name;
    }
    EXPECT_STREQ(UnitNameFromID(8), "");
    EXPECT_STREQ(UnitNameFromID(0xFFFFFFFF), "");
    for (const char* name : {"", "s", "x", "n", "nss", " ns", "ns ", "1", "second", "m", "sec."}) {
        EXPECT_EQ(UnitIDFromName(name), -1) << name;
    }
    EXPECT_EQ(UnitIDFromName(nullptr), -1);
}

TEST(TextToTime, GoodTexts) {
    for (const auto& row : Table(R"(
        0 | 0 | -1 ;; +5 | 5 | -1 ;; -5 | -5 | -1 ;; 007 | 7 | -1 ;; 1.5 | 1.5 | -1
        .5 | 0.5 | -1 ;; 5. | 5 | -1 ;; 10NS | 10 | 2 ;; -0.5Us | -500 | 2 ;; 1.0ns | 1 | 2
        0.0hr | 0 | 7 ;; 1.001us | 1001 | 2 ;; 0.29ms | 290 | 3 ;; 2.3us | 2300 | 2
        .1sec | 100 | 4 ;; 1.50000000000000000000000000ns | 1500 | 1 ;; 0.001hr | 3600 | 4 ;; 2.5min | 150 | 5 ;; 2555.5hr | 153330 | 6
        1.5fs | 1.5 | 0 ;; 0.0005ps | 0.5 | 0 ;; 1.0000000001sec | 1000000000100 | 1
        9200000000000000000 | 9.2e18 | -1 ;; -9200000000000000000ps | -9.2e18 | 1
        9200000000000000000000fs | 9.2e21 | 0 ;; 0000000000000000000000000000000001ns | 1 | 2)")) {
        double value = -77;
        int unit = -77;
        EXPECT_TRUE(TextToTime(row[0].c_str(), &value, &unit)) << row[0];
        EXPECT_EQ(value, std::stod(row[1])) << row[0];
        EXPECT_EQ(unit, Int(row[2])) << row[0];
        EXPECT_TRUE(TextToTime(row[0].c_str(), nullptr, nullptr)) << row[0];
    }
}

TEST(TextToTime, BadTextsLeaveTheOutsAlone) {
    for (const std::string& text : Split(
             "|ns|+|-|.|-.|+-5|--5|5-|1.2.3|10 ns|10xs|10nsx|10s|1e3|1e3ns|\t10|10\t|0x10|1,5|inf|"
             "nan|@5|10\xFF|.ns|9300000000000000000|-9300000000000000000|9300000000000000ns|"
             "2556hr|9300000000000000000000fs|2555.6hr|" +
                 std::string(400, '1'),
             '|')) {
        double value = -77;
        int unit = -77;
        EXPECT_FALSE(TextToTime(text.c_str(), &value, &unit)) << text;
        EXPECT_EQ(value, -77) << text;
        EXPECT_EQ(unit, -77) << text;
    }
    EXPECT_FALSE(TextToTime(nullptr, nullptr, nullptr));
}

TEST(TextToTime, RandomAndTruncatedTextsAgreeWithTheModel) {
    Random random(1);
    for (int i = 0; i < 500; ++i) {
        std::string whole = random.Pick({"", "+", "-"}) + std::to_string(random.Below(3000));
        whole += random.OneIn(2) ? "" : "." + std::to_string(random.Below(5000));
        whole += UnitNameFromID(static_cast<unsigned>(random.Below(9)));
        for (std::size_t length = 0; length <= whole.size(); ++length) {
            const std::string text = whole.substr(0, length);
            double value = 0;
            int unit = 0;
            const auto expected = NaiveReadTime(text);
            ASSERT_EQ(TextToTime(text.c_str(), &value, &unit), expected.has_value()) << text;
            if (expected) {
                ASSERT_EQ(unit, expected->unit) << text;
                ASSERT_EQ(std::trunc(value), static_cast<double>(expected->value)) << text;
            }
        }
    }
}

TEST(ChangeTime, AgreesWithExactRatios) {
    for (unsigned pair = 0; pair < 64; ++pair) {
        const unsigned from = pair / 8;
        const unsigned to = pair % 8;
        for (const std::int64_t value : {0, 1, -1, 3, 60, 1000, -7'200, 123'456'789}) {
            const Int128 scaled = value * UnitSize(from);
            const double got = ChangeTime(static_cast<double>(value), from, to);
            const auto exact =
                static_cast<long double>(scaled) / static_cast<long double>(UnitSize(to));
            const bool whole = scaled % UnitSize(to) == 0 && std::fabs(got) < 9e15;
            EXPECT_LE(std::fabs(got - exact), whole ? 0 : std::fabs(exact) * 4e-16L)
                << value << ' ' << from << ' ' << to;
        }
    }
    EXPECT_EQ(ChangeTime(0.1, 3, 3), 0.1);
    EXPECT_EQ(ChangeTime(5, 8, 1), 0);
    EXPECT_EQ(ChangeTime(5, 1, 0xFFFFFFFF), 0);
    EXPECT_EQ(ChangeTime(kInfinity, 2, 1), kInfinity);
}

TEST(ConvertTime, IsExactTruncatedAndSaturating) {
    Random random(2);
    constexpr std::int64_t kMin = std::numeric_limits<std::int64_t>::min();
    for (int i = 0; i < 4000; ++i) {
        const auto bits = static_cast<std::int64_t>(random.Bits() >> random.Below(64));
        const std::int64_t value = random.OneIn(9) ? kMin : random.OneIn(2) ? bits : -(bits / 2);
        const auto from = static_cast<unsigned>(random.Below(8));
        const auto to = static_cast<unsigned>(random.Below(8));
        const std::int64_t expected = NaiveConvert(value, from, to);
        ASSERT_EQ(ConvertTime(value, from, to), expected) << value << ' ' << from << ' ' << to;
        ASSERT_EQ(TTimeUnit<std::int64_t>(value, from, to).GetTime(), expected);
    }
    EXPECT_EQ(ConvertTime(5, 8, 1), 0);
    EXPECT_EQ(ConvertTime(5, 1, 0xFFFFFFFF), 0);
    EXPECT_EQ(TTimeUnit<std::int64_t>().GetTime(), -1);
    EXPECT_EQ(TTimeUnit<std::int64_t>(5, 99, 99).GetTime(), 5);
}

// value, unit | what ScaleNumberNoFloat gives | what ScaleNumber gives
TEST(ScaleNumber, MovesToLargerUnits) {
    for (const auto& row : Table(R"(
        0 | 1 | 0 | 1 | 0 | 1 ;; 10000 | 1 | 10 | 2 | 10 | 2
        12345 | 1 | 12345 | 1 | 12345 | 1 ;; -5000 | 0 | -5 | 1 | -5 | 1
        1e15 | 0 | 1 | 5 | 1 | 5 ;; 90 | 5 | 90 | 5 | 90 | 5 ;; 120 | 5 | 2 | 6 | 2 | 6
        7.2e18 | 0 | 2 | 7 | 2 | 7 ;; 1000 | 7 | 1000 | 7 | 1000 | 7
        999.5 | 1 | 999.5 | 1 | 999.5 | 1 ;; -1500.5 | 1 | -1500.5 | 1 | -1.5005 | 2
        1234567.5 | 1 | 1234567.5 | 1 | 1.2345675 | 3
        90.25 | 6 | 90.25 | 6 | 1.504166666666666667 | 7 ;; 59.5 | 5 | 59.5 | 5 | 59.5 | 5
        5000 | 8 | 5000 | 8 | 5000 | 8 ;; 5000 | -1 | 5000 | -1 | 5000 | -1)")) {
        double value = std::stod(row[0]);
        int unit = static_cast<int>(Int(row[1]));
        ScaleNumberNoFloat(&value, &unit);
        EXPECT_EQ(value, std::stod(row[2])) << row[0];
        EXPECT_EQ(unit, Int(row[3])) << row[0];
        value = std::stod(row[0]);
        unit = static_cast<int>(Int(row[1]));
        ScaleNumber(&value, &unit);
        EXPECT_DOUBLE_EQ(value, std::stod(row[4])) << row[0];
        EXPECT_EQ(unit, Int(row[5])) << row[0];
    }
    for (double value : {kInfinity, std::nan("")}) {
        int unit = 1;
        ScaleNumberNoFloat(&value, &unit);  // ends, and a number that isn't whole stays
        EXPECT_EQ(unit, 1);
        ScaleNumber(&value, &unit);
    }
}

// frequency, its unit | time unit | period
TEST(PeriodFromFreq, GivesThePeriodInTheUnit) {
    for (const auto& row : Table(R"(
        100 | 2 | 1 | 10000 ;; 1 | 0 | 5 | 1 ;; 10 | 1 | 1 | 1e8 ;; 1 | 4 | 1 | 1
        1 | 3 | 2 | 1 ;; 3 | 2 | 1 | 333333.33333333333 ;; 0.5 | 0 | 4 | 2000
        1 | 0 | 6 | 0.016666666666666667 ;; 0 | 2 | 1 | 0 ;; -5 | 2 | 1 | 0 ;; nan | 2 | 1 | 0
        inf | 2 | 1 | 0 ;; 100 | 5 | 1 | 0 ;; 100 | 2 | 8 | 0)")) {
        const auto unit = [](const std::string& text) { return static_cast<unsigned>(Int(text)); };
        EXPECT_DOUBLE_EQ(PeriodFromFreq(std::stod(row[0]), unit(row[1]), unit(row[2])),
                         std::stod(row[3]))
            << row[0] << ' ' << row[1];
    }
}

}  // namespace
}  // namespace corv::test
