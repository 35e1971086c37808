#include "host/vector_source.h"

#include "host/bus_text.h"
#include "host/driver.h"
#include "tests/support/test.h"

namespace corv::host {
namespace {

std::string CounterText(int type, const std::string& start) {
    return "\\counter\\TYPE\\" + std::to_string(type) + "\\DIR\\1\\RADIX\\10\\START\\" + start +
           "\\INC\\1\\PERIOD\\10\\REV\\0";
}

std::string List(Source& source, TimeWindow window) {
    const Trace trace = RecordEvents(source, window, 99);
    std::string text = trace.before.value_or("none") + ":";
    for (const Change& change : trace.changes) {
        text += " " + std::to_string(change.time) + "=" + change.value;
    }
    return text;
}

TEST(BusText, WritesDigitsOnlyForBitsThatTheyTell) {
    const auto rows = test::Table(R"(
        01011010|5A|132|90|X"5A"|0x5A ;; 1|1|1|1|"1"|0x1 ;; 10X|10X|10X|10X|"10X"|10X
        ZZZZ0001|Z1|ZZZZ0001|Z1|X"Z1"|0xZ1 ;; XX0000|X0|XX0000|X0|"XX0000"|0xX0
        000111|07|07|7|"000111"|0x07 ;; ----0001|----0001|----0001|----0001|"----0001"|----0001
        AAAA|AAAA|AAAA|AAAA|"AAAA"|AAAA ;; 0?01|0?01|0?01|0?01|"0?01"|0?01)");
    for (const auto& row : rows) {
        EXPECT_EQ(BusDigits(row[0], Radix::Bin), row[0]);
        EXPECT_EQ(BusDigits(row[0], Radix::Hex), row[1]);
        EXPECT_EQ(BusDigits(row[0], Radix::Oct), row[2]);
        EXPECT_EQ(BusDigits(row[0], Radix::Dec), row[3]);
        EXPECT_EQ(BusLiteral(row[0], Radix::Hex), row[4]);
        EXPECT_EQ(BusPlain(row[0], Radix::Hex), row[5]);
        EXPECT_EQ(BusLiteral(row[0], Radix::Bin), '"' + row[0] + '"');
        EXPECT_EQ(BusPlain(row[0], Radix::Bin), row[0]);
    }
    EXPECT_EQ(BusLiteral("000111", Radix::Oct), "O\"07\"");
    EXPECT_EQ(BusDigits(std::string(70, '1'), Radix::Dec), "1180591620717411303423");
}

TEST(BusText, NumbersHaveTheSignAndThePointOfTheirType) {
    for (int bits = 1; bits <= 9; ++bits) {
        for (int fraction = 0; fraction <= bits + 2; ++fraction) {
            for (int value = 0; value < 1 << bits; ++value) {
                std::string text;
                for (int bit = bits - 1; bit >= 0; --bit) {
                    text += value >> bit & 1 ? '1' : '0';
                }
                const auto read = [&](bool is_signed) {
                    return std::stod(BusDigits(text, Radix::Dec, {is_signed, fraction}));
                };
                EXPECT_EQ(read(false), std::ldexp(value, -fraction)) << text;
                const int low = value - (text[0] == '1' ? 1 << bits : 0);
                EXPECT_EQ(read(true), std::ldexp(low, -fraction)) << text;
            }
        }
    }
    EXPECT_EQ(BusDigits("10" + std::string(70, '0'), Radix::Dec, {true}),
              "-2361183241434822606848");
    EXPECT_EQ(BusDigits("0000", Radix::Dec, {true, 2}), "0");
    EXPECT_EQ(BusDigits("0110", Radix::Dec, {true, 2}), "1.5");
    EXPECT_EQ(BusKindOf("signed(7 downto 0)", 0), (BusKind{true, 0}));
    EXPECT_EQ(BusKindOf("ieee.fixed_pkg.UNRESOLVED_sfixed(3 downto -4)", -4), (BusKind{true, 4}));
    EXPECT_EQ(BusKindOf("U_sfixed(1 downto -2)", -2), (BusKind{true, 2}));
    EXPECT_EQ(BusKindOf("unsigned(7 downto 0)", 0), BusKind());
}

TEST(VectorSource, JoinsItsElements) {
    const VectorFormula vector{"\"01XZ\" 0, 16#F 10 -r 20", 4, false, TimeUnit::Nanosecond, 5000};
    const auto bus = MakeVector(vector);
    ASSERT_TRUE(bus);
    EXPECT_TRUE(bus->IsBus());
    EXPECT_EQ(List(*bus, {0, 40000}), "none: 5000=01XZ 15000=1111 25000=01XZ 35000=1111");
    EXPECT_EQ(bus->NaturalEnd(0), 45000);
    const auto elements = MakeElements(vector);
    ASSERT_EQ(elements.size(), 4U);
    EXPECT_EQ(List(*elements[3], {0, 20000}), "none: 5000='Z' 15000=1");
    const auto words = MakeVector({"(red,green) 0, blue 5", 2, true, TimeUnit::Picosecond, 0});
    ASSERT_TRUE(words);
    EXPECT_EQ(List(*words, {0, 9}), "none: 0=red\x1fgreen 5=blue\x1fgreen");
    EXPECT_FALSE(MakeVector({"\"01X\" 0", 4, false, TimeUnit::Picosecond, 0}));
}

TEST(VectorSource, WalksCountersForwardFromAnyQuestion) {
    const auto bus = MakeVector({CounterText(2, "0"), 3, false, TimeUnit::Picosecond, 30});
    ASSERT_TRUE(bus);
    EXPECT_EQ(List(*bus, {0, 70}), "none: 30=000 40=001 50=011 60=010 70=110");
    EXPECT_EQ(List(*bus, {45, 60}), "001: 50=011 60=010");
    EXPECT_EQ(bus->NaturalEnd(0), 190);
    // any order of questions answers as a walk does
    std::mt19937 random(11);
    const char* gray[] = {"000", "001", "011", "010", "110", "111", "101", "100"};
    for (int i = 0; i < 200; ++i) {
        const std::int64_t time = std::uniform_int_distribution<std::int64_t>(0, 2000)(random);
        const std::int64_t next = time < 30 ? 30 : time / 10 * 10 + 10;
        EXPECT_EQ(bus->NextEvent(time), next) << time;
        EXPECT_EQ(bus->ValueAt(time).value_or("none"),
                  time < 30 ? "none" : gray[(time - 30) / 10 % 8])
            << time;
    }
    const auto whole = MakeWholeCounter(CounterText(1, "7"), 0);
    ASSERT_TRUE(whole);
    EXPECT_EQ(List(*whole, {0, 20}), "none: 0=10#7 10=10#8 20=10#9");
    EXPECT_FALSE(MakeWholeCounter(CounterText(2, "7"), 0));
    EXPECT_FALSE(MakeVector({CounterText(1, "x"), 4, false, TimeUnit::Picosecond, 0}));
}

}  // namespace
}  // namespace corv::host
