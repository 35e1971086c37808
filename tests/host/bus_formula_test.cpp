#include "host/bus_formula.h"

#include "corv/typeinfo/vhdl_type.h"
#include "host/bus_text.h"
#include "host/formula_words.h"
#include "tests/support/test.h"

namespace corv::host {
namespace {

BusType TypeOf(const std::string& text) {
    if (text.find('(') == std::string::npos) {
        return {std::stoi(text), "", BusType::Sign::Open};
    }
    CString type;
    EXPECT_TRUE(TypeFromVhdl(text.c_str(), type)) << text;
    return BusTypeOf(KTypeInfo(type));
}

// The value's characters, "!" for a refused one and "?" in front of one with a warning.
std::string Read(const std::string& word, const std::string& type) {
    const BusValue value = ReadBusValue(word, TypeOf(type));
    return (value.problem.empty() ? "" : value.characters.empty() ? "!" : "?") + value.characters;
}

TEST(BusValue, ReadsWhatPeopleWrite) {
    const auto rows =
        test::Table(R"(X"A5"|8|10100101 ;; x"a5"|8|10100101 ;; 0xA5|8|10100101 ;; 165|8|10100101
        16#A5#|8|10100101 ;; 16#a5|8|10100101 ;; 2#1010_0101#|8|10100101 ;; 8'hA5|8|10100101 ;; "10100101"|8|10100101
        b"1010_0101"|8|10100101 ;; O"17"|6|001111 ;; o"377"|8|11111111 ;; D"165"|8|10100101 ;; 0b11|4|0011
        0o17|4|1111 ;; X"Z5"|8|ZZZZ0101 ;; X"x-"|8|xxxx---- ;; 1010|4|1010 ;; 01XZ|4|01XZ ;; "01XZ"|4|01XZ
        5|8|00000101 ;; 255|8|11111111 ;; 0|8|00000000 ;; 1|8|00000001 ;; X"3F"|6|111111 ;; 8X"5"|8|00000101
        8SX"F"|8|11111111 ;; (others => '0')|4|0000 ;; (others=>'Z')|3|ZZZ ;; (OTHERS=>'1')|2|11 ;; '1'|1|1 ;; 1|1|1
        -3|8|11111101 ;; -128|8|10000000 ;; -1|2|-1 ;; -1|3|111 ;; -0|3|000 ;; --1-|4|--1- ;; abc|3|abc ;; -2|2|10
        18446744073709551615|64|1111111111111111111111111111111111111111111111111111111111111111)");
    for (const auto& row : rows) {
        EXPECT_EQ(Read(row[0], row[1]), row[2]) << row[0];
    }
}

TEST(BusValue, TellsWhatIsCutFilledUpOrWrong) {
    const auto rows =
        test::Table(R"(X"5"|8|?00000101 ;; X"0A5"|8|?10100101 ;; X"1A5"|8|! ;; "1010"|8|?00001010
        0010|8|?00000010 ;; "000010100101"|8|?10100101 ;; 111100001111|8|! ;; 1010|8|! ;; 101|8|?01100101
        300|8|! ;; 256|8|! ;; 0x1FF|8|! ;; 16#100#|8|! ;; -129|8|! ;; -3|1|! ;; A5|8|! ;; "1X1"|8|! ;; "255"|8|!
        99999999999999999999999999|64|! ;; 255|3|! ;; 01Q1|4|?01Q1 ;; X"G5"|8|! ;; 0xZ|8|! ;; idle|8|!
        X"|8|! ;; X""|8|! ;; 999X"5"|8|!)");
    for (const auto& row : rows) {
        EXPECT_EQ(Read(row[0], row[1]), row[2]) << row[0];
    }
}

TEST(BusValue, KnowsSignsAndElementsOfTypes) {
    const auto rows =
        test::Table(R"(-3|signed(7 downto 0)|11111101 ;; 165|signed(7 downto 0)|?10100101
        127|signed(7 downto 0)|01111111 ;; -129|signed(7 downto 0)|! ;; -3|unsigned(7 downto 0)|!
        -3|std_logic_vector(7 downto 0)|! ;; 255|unsigned(7 downto 0)|11111111 ;; X"A5"|signed(7 downto 0)|10100101
        "01XZ"|bit_vector(3 downto 0)|! ;; X"Z"|bit_vector(3 downto 0)|! ;; zxlh|std_logic_vector(0 to 3)|zxlh
        01Q1|std_logic_vector(3 downto 0)|! ;; X"5"|bit_vector(3 downto 0)|0101)");
    for (const auto& row : rows) {
        EXPECT_EQ(Read(row[0], row[1]), row[2]) << row[0];
    }
}

TEST(BusValue, ReadsBackWhatBusesAreWrittenAs) {
    std::mt19937 random(3);
    for (int i = 0; i < 2000; ++i) {
        const int width = 1 + static_cast<int>(random() % 70);
        std::string bits;
        for (int bit = 0; bit < width; ++bit) {
            bits += i % 3 == 0 ? "UX01ZWLH-"[random() % 9] : "01"[random() % 2];
        }
        const BusType type{width, "", BusType::Sign::Open};
        for (const Radix radix : {Radix::Bin, Radix::Oct, Radix::Hex, Radix::Dec}) {
            const std::string text = BusLiteral(bits, radix);
            const bool bare = text.size() == bits.size() && radix == Radix::Dec;
            ASSERT_EQ(ReadBusValue(text, type).characters, bare ? text : bits) << text;
        }
    }
}

TEST(FormulaWords, FindsTheValues) {
    const auto rows = test::Table(
        R"(0 0, 1 10ns|0 1 ;; 0 0 1 10|0 1 ;; 0 1 ns, 1 2 us -r 5 ns|0 1 ;; (a, b) 0,"x y" 5|(a, b) "x y"
        1 @5ns,0 @6 ns|1 0 ;; 1|1 ;; -r 5 1 0|1 ;; 0 5, ns 6|0 ns ;; 0 , 1 5|0 5 ;; X"A 5" 0|X"A 0 ;; ((a) 0|((a) 0
        /vesk 010NS|_ ;; \counter\TYPE\1|_ ;; /CUSTOM a, b|_ ;; 1 5 ,ns|1 ;; 1 5,-REPEAT 7|1)");
    for (const auto& row : rows) {
        std::string found;
        for (const WordPlace place : ValueWords(row[0])) {
            found += (found.empty() ? "" : " ") + row[0].substr(place.position, place.length);
        }
        EXPECT_EQ(found, row[1]) << row[0];
    }
}

TEST(BusFormula, KeepsThePlacesOfTheFormula) {
    const std::string formula = "X\"A5\" 0, 5 10xs, 300 20, X\"5\" 30 -r 40";
    const BusFormula bus(formula, TypeOf("8"));
    EXPECT_EQ(bus.Text(), "10100101 0, 00000101 10xs, 00000000 20, 00000101 30 -r 40");
    const auto problems = bus.Check(TimeUnit::Picosecond);
    std::string places;
    for (const Problem& problem : problems) {
        places += formula.substr(problem.position, problem.length) + "|";
    }
    EXPECT_EQ(places, "xs|300|X\"5\"|");
    const BusFormula early("0 0, X\"A5\"", TypeOf("8"));
    const auto timeless = early.Check(TimeUnit::Picosecond);
    ASSERT_EQ(timeless.size(), 1U);
    EXPECT_EQ(timeless[0].sentence.substr(0, 17), "the value `X\"A5\"`");
}

}  // namespace
}  // namespace corv::host
