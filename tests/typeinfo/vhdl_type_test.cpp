#include "corv/typeinfo/vhdl_type.h"

#include "corv/typeinfo/type_info.h"
#include "tests/support/test.h"
#include "tests/typeinfo/random_type.h"
#include "typeinfo/named_types.h"

namespace corv::test {
namespace {

using namespace std::string_literals;

const std::string kStdLogic = "e#9#std_logicc9 UX01ZWLH-";
const std::string kStdUlogic = "e#10#std_ulogicc9 UX01ZWLH-";
const std::string kBit = "e#3#bitc2 01";

std::string FromVhdl(const std::string& text) {
    CString type("untouched");
    Problem problem{77, 77, "none"};
    if (!TypeFromVhdl(text.c_str(), type, &problem)) {
        EXPECT_STREQ(type, "untouched");
        return "at " + std::to_string(problem.position) + ": " + problem.sentence;
    }
    EXPECT_EQ(problem.sentence, "none");
    EXPECT_TRUE(KTypeInfo::CheckTypeInfo(type)) << type;
    return static_cast<const char*>(type);
}

std::string ToVhdl(const std::string& type) {
    CString text("no text");
    TypeToVhdl(type.c_str(), text);
    return static_cast<const char*>(text);
}

TEST(VhdlType, Read) {
    const std::string character(typeinfo::kStandardTypes[5]);
    const std::string byte = "a#28#std_logic_vector(7 downto 0)1 ricd7 0 " + kStdLogic;
    const struct {
        const char* vhdl;
        std::string type;
        const char* written;  // back from the type; null when as it was read
    } rows[] = {
        {"std_logic", kStdLogic, nullptr},
        {"BIT", kBit, "bit"},
        {"boolean", "e#7#booleans2 false true ", nullptr},
        {"character", character, nullptr},
        {"severity_level", "e#14#severity_levels4 note warning error failure ", nullptr},
        {"integer", "i#7#integerrict-2147483648 2147483647", nullptr},
        {"natural", "i#7#naturalrict0 2147483647", nullptr},
        {"positive", "i#8#positiverict1 2147483647", nullptr},
        {"real", "f#4#realrrct-1.79769e+308 1.79769e+308", nullptr},
        {"time", "f#4#timerrct-9.22337e+18 9.22337e+18", nullptr},
        {"delay_length", "f#12#delay_lengthrrct0 9.22337e+18", nullptr},
        {"integer range 0 to 15", "i#7#integerrict0 15", nullptr},
        {"integer range 16#F# downto -1_0;", "i#7#integerricd15 -10",
         "integer range 15 downto -10"},
        {"natural range 3 downto 3", "i#7#naturalricd3 3", nullptr},
        {"integer range - 2147483648 to +0", "i#7#integerrict-2147483648 0",
         "integer range -2147483648 to 0"},
        {"real range 0.0 to 0.123456789", "f#4#realrrct0 0.123457", "real range 0.0 to 0.123457"},
        {"real range -1e300 to 1.5", "f#4#realrrct-1e+300 1.5", "real range -1.0e+300 to 1.5"},
        {"time range 0ns to 1.5 US", "f#4#timerrct0 1.5e+09", "time range 0 fs to 1500 ns"},
        {"time range 10 ps downto -1e3fs", "f#4#timerrcd10000 -1000",
         "time range 10 ps downto -1 ps"},
        {"(idle, run, done)", "e#0#s3 idle run done ", nullptr},
        {"(a)", "e#0#s1 a ", nullptr},
        {"('0','1', ''', '\"', ' ')", "e#0#c5 01'\" ", "('0', '1', ''', '\"', ' ')"},
        {"('0', x, ' ')", "e#0#s3 '0 x '  ", nullptr},
        {"(a, \\A\\, 'a', 'A', \\a\\)", "e#0#s5 a \\A\\ 'a 'A \\a\\ ", nullptr},
        {"(\\a\\\\b\\, c)", "e#0#s2 \\a\\\\b\\ c ", nullptr},
        {"STD_LOGIC_VECTOR(7 DOWNTO 0)", byte, "std_logic_vector(7 downto 0)"},
        {"ieee . numeric_std.unsigned(0 to 0)", "a#16#unsigned(0 to 0)1 rict0 0 " + kStdLogic,
         "unsigned(0 to 0)"},
        {"sfixed(3 downto -4)", "a#19#sfixed(3 downto -4)1 ricd3 -4 " + kStdLogic, nullptr},
        {"string(1 to 8)", "a#14#string(1 to 8)1 rict1 8 " + character, nullptr},
        {"string", "a#6#string1 riut1 2147483647 " + character, nullptr},
        {"bit_vector", std::string(typeinfo::kStandardTypes[6]), nullptr},
        {"std_logic_vector", std::string(typeinfo::kStandardTypes[7]), nullptr},
        {"std_ulogic_vector", std::string(typeinfo::kStandardTypes[8]), nullptr},
        {"signed", "a#6#signed1 riut0 2147483647 " + kStdLogic, nullptr},
        {"array (0 to 3) of std_logic_vector(7 downto 0)", "a#8#(0 to 3)1 rict0 3 " + byte,
         nullptr},
        {"array(natural range 2 to 3,-1 downto -2)of bit",
         "a#21#(2 to 3,-1 downto -2)2 rict2 3 ricd-1 -2 " + kBit,
         "array (2 to 3, -1 downto -2) of bit"},
        {"array (natural range <>, integer range <>, positive range <>) of bit",
         "a#0#3 riut0 2147483647 riut-2147483648 2147483647 riut1 2147483647 " + kBit, nullptr},
        {"record a : std_logic; b, \\c!\\ : bit_vector(3 downto 0); end record",
         "r#0#3 a " + kStdLogic + " b a#22#bit_vector(3 downto 0)1 ricd3 0 " + kBit +
             " \\c!\\ a#22#bit_vector(3 downto 0)1 ricd3 0 " + kBit,
         "record a : std_logic; b : bit_vector(3 downto 0); \\c!\\ : bit_vector(3 downto 0); end "
         "record"},
        {"record p : record x : (on1, off); end record pt; end record line;",
         "r#4#line1 p r#2#pt1 x e#0#s2 on1 off ",
         "record p : record x : (on1, off); end record pt; end record line"},
        {"record a : bit; end record \\x y\\", "r#5#\\x y\\1 a " + kBit,
         "record a : bit; end record"},
        {"work.\\My Pkg\\.signed(0 to 0)", "a#14#signed(0 to 0)1 rict0 0 " + kStdLogic,
         "signed(0 to 0)"},
        {"std_logic_vector(natural range 7 downto 0)", byte, "std_logic_vector(7 downto 0)"},
        {"std_logic_vector(open)", std::string(typeinfo::kStandardTypes[7]), "std_logic_vector"},
        {"signed(open)", "a#6#signed1 riut0 2147483647 " + kStdLogic, "signed"},
        {"array (std.standard.natural range <>) of bit", "a#0#1 riut0 2147483647 " + kBit,
         "array (natural range <>) of bit"},
        {"array (natural) of bit", "a#17#(0 to 2147483647)1 rict0 2147483647 " + kBit,
         "array (0 to 2147483647) of bit"},
        {"u_signed(7 downto 0)", "a#20#u_signed(7 downto 0)1 ricd7 0 " + kStdUlogic, nullptr},
        {"unresolved_sfixed(3 downto -4)",
         "a#30#unresolved_sfixed(3 downto -4)1 ricd3 -4 " + kStdUlogic, nullptr},
        {"float32", "a#19#float(8 downto -23)1 ricd8 -23 " + kStdLogic, "float(8 downto -23)"},
        {"float64", "a#20#float(11 downto -52)1 ricd11 -52 " + kStdLogic, "float(11 downto -52)"},
        {"float128", "a#21#float(15 downto -112)1 ricd15 -112 " + kStdLogic,
         "float(15 downto -112)"},
        {"ieee.std_logic_1164.X01", kStdLogic, "std_logic"},
        {"UX01Z", kStdLogic, "std_logic"},
        {"resolved std_ulogic", kStdLogic, "std_logic"},
        {"-- x\rbit", kBit, "bit"},
        {"-- x\fbit\v-- y", kBit, "bit"},
        {"bit\xA0", kBit, "bit"},
        {"\xC2\xA0"
         "bit\xC2\xA0;",
         kBit, "bit"},
        {"(\xC3\xA0, b)", "e#0#s2 \xC3\xA0 b ", nullptr},
        {" -- a comment\n\tarray /* one\n more */ (0 to\r\n 3) of -- :\n bit -- the end",
         "a#8#(0 to 3)1 rict0 3 " + kBit, "array (0 to 3) of bit"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(FromVhdl(row.vhdl), row.type) << row.vhdl;
        EXPECT_EQ(ToVhdl(row.type), row.written ? row.written : row.vhdl);
    }
}

// A text, the place and the length of what is wrong, and a part of the sentence.
constexpr const char* kProblems = R"table(
    _ | 0 | 0 | no type ;; std_logc | 0 | 8 | `std_logc`; did you mean `std_logic`?
    std_logic_vec(3 downto 0) | 0 | 13 | did you mean `std_logic_vector`?
    tiem | 0 | 4 | did you mean `time`? ;; bool | 0 | 4 | did you mean `boolean`?
    int | 0 | 3 | did you mean `integer`?
    recrod a : bit; end record | 0 | 6 | did you mean `record`?
    my_type | 0 | 7 | unknown type `my_type`; write ;; work.my_type | 5 | 7 | `my_type`
    work. | 5 | 0 | a name after `.`, but the text ends ;; bit bit | 4 | 3 | nothing more
    bit;; | 4 | 1 | found `;` ;; 7 | 0 | 1 | expected a type
    range 0 to 7 | 0 | 5 | expected a type
    std_logic(3 downto 0) | 0 | 9 | did you mean `std_logic_vector`?
    integer(3 downto 0) | 0 | 7 | after `range`
    bit range 0 to 1 | 4 | 5 | `bit` is an enumeration
    unsigned range 7 downto 0 | 9 | 5 | in parentheses
    unsigned(7 dwonto 0) | 11 | 6 | did you mean `downto`?
    unsigned(7:0) | 10 | 1 | `to` or `downto`
    unsigned(WIDTH-1 downto 0) | 9 | 5 | a number as the bound, found `WIDTH`
    unsigned(7 downto 0 | 19 | 0 | expected `)` after the range, but the text ends
    unsigned(7+1 downto 0) | 10 | 1 | found `+`
    unsigned(3 downto -1) | 18 | 2 | `-1` is not a value of `natural`
    string(0 to 3) | 7 | 1 | `0` is not a value of `positive`
    unsigned(0 downto 7) | 9 | 10 | is empty; write it with `to`
    unsigned(7 to 0) | 9 | 6 | is empty; write it with `downto`
    unsigned(7.0 downto 0) | 9 | 3 | no whole number
    unsigned(8bit downto 0) | 9 | 4 | no whole number
    integer range 0 to 99999999999 | 19 | 11 | not a value of `integer`
    natural range -1 to 3 | 14 | 2 | `-1` is not a value of `natural`
    real range 0.0 to 1e999 | 18 | 5 | range of a double
    real range 1.0 to 0.0 | 11 | 10 | is empty
    time range 0 to 5 ns | 11 | 1 | no time unit
    time range 0 ns to 5 s | 19 | 1 | no time unit
    delay_length range -1 ns to 0 ns | 19 | 5 | not a value of `delay_length`
    time range 0 fs to 1e6 hr | 19 | 6 | not a value of `time` ;; () | 1 | 1 | expected a literal
    (a, b, A) | 7 | 1 | `A` appears twice ;; (a, b, b, a) | 7 | 1 | `b` appears twice
    ('a', 'A', 'a') | 11 | 3 | `'a'` appears twice
    (a b) | 3 | 1 | expected `)` or `,` after the literal, found `b`
    (a, to) | 4 | 2 | expected a literal ;; (\a b\) | 1 | 5 | blank
    array 0 to 3 of bit | 6 | 1 | expected `(` ;; array (<>) of bit | 7 | 2 | found `<>`
    array (boolean) of bit | 7 | 7 | whole numbers
    array (0 to 3, natural range <>) of bit | 15 | 7 | in all of its dimensions or in none
    array (natural range <>, 0 to 3) of bit | 25 | 1 | in all of its dimensions or in none
    record end record | 7 | 3 | at least one field
    record in : bit; end record | 7 | 2 | found `in`, a reserved word
    (begin, in) | 1 | 5 | a reserved word ;; (a__b) | 1 | 4 | whose underscores no name may have
    (a_) | 1 | 2 | whose underscores no name may have
    unsigned(-1 downto 0) | 9 | 11 | is empty; only ranges with a value can be read
    string(1 to 0) | 7 | 6 | is empty; only ranges with a value can be read
    string(natural range 0 to 3) | 21 | 1 | `0` is not a value of `positive`
    unsigned(positive range 0 to 3) | 24 | 1 | `0` is not a value of `positive`
    std_logic_vector(integer) | 17 | 7 | `integer` has values outside `natural`
    real range -1.0e-3 to 16#F.8# | 22 | 7 | a based literal; write the bound of a real in decimal
    integer range 0 to 16#FF | 19 | 5 | no closing `#`
    std_ulogic range 'X' to '1' | 11 | 5 | only ranges of numbers can be read
    resolved bit | 9 | 3 | expected `std_ulogic` after `resolved`
    array (0 to 3) bit | 15 | 3 | expected `of` ;; array (0 to 3) of | 17 | 0 | expected a type
    record a : bit end record | 15 | 3 | expected `;`
    record a bit; end record | 9 | 3 | expected `:`
    record a, : bit; end record | 10 | 1 | the name of a field
    record a : bit; A : bit; end record | 16 | 1 | the field `A` appears twice
    record a : bit; | 15 | 0 | `end record` ;; record \a b\ : bit; end record | 7 | 5 | blank
    record a : bit; end recrd | 20 | 5 | did you mean `record`?
    bit /* open | 4 | 2 | no closing `*/`)table";

TEST(VhdlType, Problems) {
    auto rows = Table(kProblems);
    rows.push_back({" -- bit\n", "0", "8", "no type"});
    rows.push_back({"  slv(3 downto 0)", "2", "3", "did you mean `std_logic_vector`?"});
    rows.push_back({"(a, \\open\n\\)", "4", "1", "no closing `\\`"});
    for (const auto& row : rows) {
        CString type("untouched");
        Problem problem{77, 77, ""};
        ASSERT_FALSE(TypeFromVhdl(row[0].c_str(), type, &problem)) << row[0];
        EXPECT_STREQ(type, "untouched");
        EXPECT_EQ(std::to_string(problem.position), row[1]) << row[0] << ": " << problem.sentence;
        EXPECT_EQ(std::to_string(problem.length), row[2]) << row[0] << ": " << problem.sentence;
        EXPECT_NE(problem.sentence.find(row[3]), std::string::npos)
            << row[0] << ": " << problem.sentence;
        EXPECT_FALSE(TypeFromVhdl(row[0].c_str(), type));
    }
    CString type;
    EXPECT_FALSE(TypeFromVhdl(nullptr, type));
}

TEST(VhdlType, WrittenOut) {
    const struct {
        const char* type;
        const char* vhdl;
    } rows[] = {
        {"eBIT c2 01", "bit"},
        {"ebit c2 10", "('1', '0')"},
        {"e#5#states2 idle run ", "(idle, run)"},
        {"i#5#countrict-5 5", "integer range -5 to 5"},
        {"i#5#countrict-2147483648 2147483647", "integer"},
        {"i#7#naturalrict-1 5", "integer range -1 to 5"},
        {"i#7#naturalrict5 2", "natural range 5 downto 2"},
        {"i#7#integerriut0 5", "integer range 0 to 5"},
        {"f#1#vrrct0 1", "real range 0.0 to 1.0"},
        {"f#1#vrrct-1.79769e+308 1.79769e+308", "real"},
        {"f#4#timerrct0 1e+20", "real range 0.0 to 1.0e+20"},
        {"a#8#unsigned1 ricd7 0 estd_logic c9 UX01ZWLH-", "unsigned(7 downto 0)"},
        {"a#8#UNSIGNED1 rict7 0 estd_logic c9 UX01ZWLH-", "unsigned(7 downto 0)"},
        {"a#8#unsigned1 ricd7 0 ebit c2 01", "array (7 downto 0) of bit"},
        {"a#8#unsigned1 ricd7 -1 estd_logic c9 UX01ZWLH-", "array (7 downto -1) of std_logic"},
        {"a#8#unsigned1 riut0 9 estd_logic c9 UX01ZWLH-", "array (natural range <>) of std_logic"},
        {"a#8#unsigned2 rict0 9 rict0 9 ebit c2 01", "array (0 to 9, 0 to 9) of bit"},
        {"a#1#x1 riud9 1 ebit c2 01", "array (positive range <>) of bit"},
        {"r#5#a rec1 f ebit c2 01", "record f : bit; end record"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(ToVhdl(row.type), row.vhdl) << row.type;
    }
    std::istringstream types(
        "e#1#xc0 |e#1#xs2 a 7b |e#1#xs1 \\open |e#1#xs2 of a |e#1#xs2 a A |e#1#xc2 00|"
        "a#1#x0  ebit c2 01|r#1#x1 end ebit c2 01|r#1#x1 a.b ebit c2 01|"
        "r#1#x2 a ebit c2 01 A ebit c2 01|r#1#x0 |e#1#xs1 a_ |e#1#xs1 a__b |"
        "r#1#x1 signal ebit c2 01|a#1#x2 rict0 3 riut0 2147483647 ebit c2 01|r#1#x1 a ex c0 ||"
        "bit|i#5#counterict-5 5|a#3#busricd7 0 ebit c2 01");
    for (std::string type; std::getline(types, type, '|');) {
        EXPECT_EQ(ToVhdl(type), "no text") << type;  // VHDL has no words for it
    }
    CString text;
    EXPECT_FALSE(TypeToVhdl(nullptr, text));
}

std::string NestedArrays(int levels, const char* innermost) {
    std::string text;
    for (int i = 1; i < levels; ++i) {
        text += "array (0 to 1) of ";
    }
    return text + innermost;
}

TEST(VhdlType, Limits) {
    EXPECT_EQ(FromVhdl(NestedArrays(64, "bit")).substr(0, 2), "a#");
    EXPECT_EQ(FromVhdl(NestedArrays(63, "unsigned")).substr(0, 2), "a#");
    const std::string place = "at " + std::to_string(63 * 18) + ": types nest deeper than 64";
    EXPECT_EQ(FromVhdl(NestedArrays(65, "bit")).substr(0, place.size() + 2),
              "at " + std::to_string(64 * 18) + ": types nest deeper than 64 l");
    EXPECT_EQ(FromVhdl(NestedArrays(64, "unsigned")).substr(0, place.size()), place);
    // each level doubles the description
    std::string doubling = "string";
    for (int i = 0; i < 40; ++i) {
        doubling = "record a, b : " + doubling + "; end record";
    }
    EXPECT_EQ(FromVhdl(doubling), "at 0: the description of this type is longer than 16 MiB");
    EXPECT_EQ(FromVhdl(std::string((16 << 20) + 1, ' ')), "at 0: the text is longer than 16 MiB");
}

// The reserved words of VHDL-2008 in any letter case, and what only resembles them.
TEST(VhdlType, ReservedWordsAreNoNames) {
    for (const char* word : {"abs", "XNOR", "Signal", "vunit", "assume_guarantee", "null", "end"}) {
        EXPECT_EQ(FromVhdl("(a, "s + word + ")").substr(0, 5), "at 4:") << word;
        EXPECT_EQ(ToVhdl("e#1#xs1 "s + word + " "), "no text") << word;
    }
    for (const char* word : {"ab", "signals", "o", "outs", "natural", "\\signal\\", "range1"}) {
        EXPECT_EQ(FromVhdl("(a, "s + word + ")"), "e#0#s2 a "s + word + " ");
    }
}

// Quotes in messages are cut between characters.
TEST(VhdlType, LongWordsAreQuotedInPart) {
    const std::string name = "a" + std::string(38, 'b') +
                             "\xC3\xA4"
                             "cdef";
    EXPECT_NE(FromVhdl(name).find("`" + name.substr(0, 39) + "...`"), std::string::npos);
}

TEST(VhdlType, RandomTypesReadWhatTheBuildersWrite) {
    for (std::uint32_t seed = 1; seed <= 2000; ++seed) {
        Random random(seed);
        const KnownType known = RandomType(random, static_cast<int>(random.Below(5)), false);
        const std::string vhdl = VhdlOf(known);
        const std::string type = Describe(known);
        ASSERT_EQ(FromVhdl(vhdl), type) << seed << ' ' << vhdl;
        const std::string written = ToVhdl(type);
        ASSERT_EQ(FromVhdl(written), type) << seed << ' ' << written;
        ASSERT_EQ(ToVhdl(FromVhdl(written)), written) << seed;
    }
}

}  // namespace
}  // namespace corv::test
