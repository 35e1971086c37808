#include "corv/util/dec_converter.h"

#include "tests/support/test.h"

namespace corv::test {
namespace {

// Radix 0 reads with the form that has the radix in the text.
int Read(const std::string& text, std::int64_t radix, std::int64_t* value) {
    c_decConverter converter;
    return radix == 0 ? converter.Convert(text.c_str(), value)
                      : converter.Convert(text.c_str(), static_cast<int>(radix), value);
}

TEST(DecConverter, GoodTexts) {
    const std::string long_rows = "2|" + std::string(64, '1') + "|-1\n2|" + std::string(99, '0') +
                                  "1|1\n0|16#" + std::string(99, '0') + "1|1";
    for (const char* table : {R"(
        0 | 10#14 | 14 ;; 0 | 10#-1 | -1 ;; 0 | 10#+5 | 5 ;; 0 | 16#fF# | 255
        0 | 16#-80 | -128 ;; 0 | 2#1010_0101# | 165 ;; 0 | 3#0_0_12 | 5
        0 | 16#FFFFFFFFFFFFFFFF | -1 ;; 0 | 10#18446744073709551615 | -1
        0 | 10#9223372036854775807 | 9223372036854775807
        0 | 10#9223372036854775808 | -9223372036854775808
        0 | 10#-9223372036854775808 | -9223372036854775808 ;; 2 | 0101 | 5 ;; 8 | 777 | 511
        10 | -5 | -5 ;; 10 | +5 | 5 ;; 10 | -9223372036854775808 | -9223372036854775808
        16 | 8000000000000000 | -9223372036854775808)",
                              long_rows.c_str()}) {
        for (const auto& row : Table(table)) {
            std::int64_t value = 77;
            EXPECT_NE(Read(row[1], Int(row[0]), &value), 0) << row[1];
            EXPECT_EQ(value, Int(row[2])) << row[1];
        }
    }
}

TEST(DecConverter, BadTextsLeaveTheValueAlone) {
    const std::pair<int, std::string> rows[] = {
        {0,
         "|#|10#|10##|10#-|14|0110|1#0|17#0|0#0|-2#1|2#2|16#G|10#1_|10#_1|10#1__0|10#1_#|10# 1|"
         "10#1#x|10#1##|10#--1|-10#1|10#-_1|#5|x#5|10#1.5|4294967298#1|10#18446744073709551616|"
         "16#10000000000000000|99999999999999999999#1|10#1\t|\n10#1"},
        {2, "|1X1|-1|+1|102|1_0|\t1|1" + std::string(64, '0')},
        {8, "8|7x"},
        {10, "-|5#|1\t|18446744073709551616|--1|1.5"},
        {16, "-1|1g|10000000000000000"},
        {1, "0"},
        {17, "1"},
        {-10, "1"}};
    for (const auto& [radix, texts] : rows) {
        for (const std::string& text : Split(texts, '|')) {
            std::int64_t value = 77;
            EXPECT_EQ(Read(text, radix, &value), 0) << radix << ' ' << text;
            EXPECT_EQ(value, 77) << text;
        }
    }
    std::int64_t value = 77;
    EXPECT_EQ(c_decConverter().Convert(nullptr, &value), 0);
    EXPECT_EQ(c_decConverter().Convert(nullptr, 10, &value), 0);
}

TEST(DecConverter, MakeBinWidths) {
    CString text("old");
    for (const int width : {0, -1, -2'147'483'647}) {
        EXPECT_NE(c_decConverter().MakeBin(5, width, text), 0);
        EXPECT_STREQ(text, "");
    }
    EXPECT_NE(c_decConverter().MakeBin(5, 2, text), 0);
    EXPECT_STREQ(text, "01");
    EXPECT_NE(c_decConverter().MakeBin(~0ULL, 200, text), 0);
    EXPECT_STREQ(text, (std::string(136, '0') + std::string(64, '1')).c_str());
}

TEST(DecConverter, RandomNumbersReadBack) {
    Random random(1);
    c_decConverter converter;
    for (int i = 0; i < 3000; ++i) {
        const std::uint64_t bits = random.Bits() >> random.Below(64);
        const int width = 1 + static_cast<int>(random.Below(64));
        CString text;
        ASSERT_NE(converter.MakeBin(bits, width, text), 0);
        ASSERT_EQ(text.GetLength(), width);
        const auto expect = [&](std::int64_t radix, const char* digits, std::uint64_t number) {
            std::int64_t value = 0;
            ASSERT_NE(Read(digits, radix, &value), 0) << digits;
            ASSERT_EQ(static_cast<std::uint64_t>(value), number) << digits << " radix " << radix;
        };
        expect(2, text, width == 64 ? bits : bits & ((1ULL << width) - 1));
        text.Format("16#%I64X", bits);
        expect(0, text, bits);
        text.Format("10#%I64i", bits);
        expect(0, text, bits);
        std::string digits;
        const auto radix = 2 + random.Below(15);
        for (std::uint64_t rest = bits; rest > 0 || digits.empty(); rest /= radix) {
            digits.insert(digits.begin(), "0123456789abcdef"[rest % radix]);
        }
        expect(static_cast<std::int64_t>(radix), digits.c_str(), bits);
    }
}

TEST(DecConverter, TruncatedText) {
    const std::string whole = "16#-12_3f#";
    const std::string readable = "    .. ...";  // where the text up to here is a number
    for (std::size_t last = 0; last < whole.size(); ++last) {
        std::int64_t value = 77;
        EXPECT_EQ(Read(whole.substr(0, last + 1), 0, &value) != 0, readable[last] == '.') << last;
    }
}

}  // namespace
}  // namespace corv::test
