// The texts of values, from and to stored bytes.

#include "corv/typeinfo/type_info.h"
#include "tests/support/test.h"
#include "tests/typeinfo/random_type.h"
#include "typeinfo/named_types.h"

namespace corv::test {
namespace {

using Bytes = std::vector<unsigned char>;

constexpr unsigned char kUntouched = 0xA5;

const CString& TypeText(const std::string& name) {
    static const CString character(typeinfo::kStandardTypes[5]);
    static const struct {
        const char* name;
        CString text;
    } kTypes[] = {
        {"std_logic", "e#9#std_logicc9 UX01ZWLH-"},
        {"state", "e#5#states5 idle Run 'q 'Q \\A\\\\,b\\ "},
        {"letters", "e#7#lettersc4 aB'\""},
        {"character", character},
        {"integer", "i#7#integerrict-2147483648 2147483647"},
        {"small", "i#5#smallricd15 -3"},
        {"real", "f#4#realrrct-1.79769e+308 1.79769e+308"},
        {"unit", "f#4#unitrrct0 1"},
        {"pi", "f#2#pirrct0 3.14159"},
        {"slv4", "aslv 1 ricd3 0 e#9#std_logicc9 UX01ZWLH-"},
        {"slv5", "aslv 1 ricd4 0 e#9#std_logicc9 UX01ZWLH-"},
        {"slv12", "aslv 1 ricd11 0 e#9#std_logicc9 UX01ZWLH-"},
        {"grid", "agrid 2 rict0 1 ricd1 0 ebit c2 01"},
        {"states", "astates 1 rict0 2 e#5#states5 idle Run 'q 'Q \\A\\\\,b\\ "},
        {"quotes", "aquotes 1 rict0 2 e#7#lettersc4 aB'\""},
        {"string3", "astring 1 rict1 3 " + character},
        {"integers", "aints 1 rict0 1 i#5#smallricd15 -3"},
        {"reals", "areals 1 rict0 1 f#4#realrrct-1.79769e+308 1.79769e+308"},
        {"one", "aone 1 rict0 0 i#5#smallricd15 -3"},
    };
    for (const auto& type : kTypes) {
        if (name == type.name) {
            return type.text;
        }
    }
    ADD_FAILURE() << "no type " << name;
    return kTypes[0].text;
}

// The stored value as a list of its scalars, empty when the text was refused.
std::string Read(const KTypeInfo& type, const std::string& text) {
    const auto size = static_cast<std::size_t>(type.GetSimpleSize());
    Bytes bytes(size + 1, kUntouched);
    if (!type.GetBytes(CString(std::string_view(text)), bytes.data(), static_cast<int>(size), 2,
                       0)) {
        EXPECT_EQ(bytes, Bytes(size + 1, kUntouched)) << text;
        return "";
    }
    EXPECT_EQ(bytes[size], kUntouched);
    const KTypeInfo& scalar = type.IsScalar() ? type : type.GetArrayElementKTypeInfo();
    const auto step = static_cast<std::size_t>(scalar.GetScalarSize());
    std::string out;
    for (std::size_t i = 0; i < size; i += step) {
        std::int32_t number = 0;
        double real = 0;
        std::memcpy(&number, &bytes[i], std::min(step, sizeof number));
        std::memcpy(&real, &bytes[i], std::min(step, sizeof real));
        char text_of_real[40];
        std::snprintf(text_of_real, sizeof text_of_real, "%.17g", real);
        out += i == 0 ? "" : " ";
        out += step == 8 ? std::string(text_of_real) : std::to_string(number);
    }
    return out;
}

TEST(ValueText, Accepted) {
    for (const auto& row : Table(R"table(
        std_logic | 1 = 3 | '1' = 3 | x = 1 | 'z' = 4 | - = 8
        state | idle = 0 | IDLE = 0 | rUN = 1 | q = 2 | Q = 3 | 'Q' = 3 | \A\\,b\ = 4
        letters | a = 0 | b = 1 | ' = 2 | ''' = 2 | " = 3
        character | A = 65 | 'a' = 97 | nul = 0 | C128 = 128 | ' ' = 32
        integer | 0 = 0 | -12 = -12 | +7 = 7 | 1_000 = 1000 | 2e3 = 2000 | 2E+03 = 2000
        integer | 0e999999999999999999999 = 0 | 2147483647 = 2147483647 | -2147483648 = -2147483648
        integer | 16#FF# = 255 | 16#ff = 255 | 2#1010_1010# = 170 | 10#14 = 14
        integer | -16#80000000# = -2147483648 | 10#-14 = -14 | 16#F#e2 = 3840 | 3#12#E1 = 15
        small | -3 = -3 | 15 = 15
        real | 1.5 = 1.5 | -2 = -2 | 1_0.2_5e+1_0 = 102500000000 | 1e-400 = 0 | -0.0001e-320 = -0
        real | 1.7976931348623157e308 = 1.7976931348623157e+308
        unit | 1 = 1
        pi | 3.1415926 = 3.1415926000000001
        slv4 | 01xZ = 2 3 1 4 | "01XZ" = 2 3 1 4 | X"a" = 3 2 3 2 | b"1_01_0" = 3 2 3 2
        slv4 | ('0',1,x,'Z') = 2 3 1 4 | ( '0' , '1' , 'X' , 'Z' ) = 2 3 1 4
        slv12 | X"5_A0" = 2 3 2 3 3 2 3 2 2 2 2 2 | o"1234" = 2 2 3 2 3 2 2 3 3 3 2 2
        grid | 0111 = 0 1 1 1 | x"7" = 0 1 1 1
        states | qQq = 2 3 2 | (idle,RUN,\A\\,b\) = 0 1 4 | (idle,'q','Q') = 0 2 3
        quotes | "a" = 3 0 3 | """B'" = 3 1 2 | ('a',''','"') = 0 2 3
        string3 | abc = 97 98 99 | "a" = 34 97 34 | "(,)" = 40 44 41 | (NUL,',',del) = 0 44 127
        integers | (1,-3) = 1 -3 | (16#F#, 2) = 15 2
        reals | (1.5,-2e1) = 1.5 -20
        one | (5) = 5)table")) {
        for (std::size_t i = 1; i < row.size(); ++i) {
            const auto pair = Split(row[i], '=');
            EXPECT_EQ(Read(KTypeInfo(TypeText(row[0])), pair[0]), pair[1]) << row[0] << row[i];
        }
    }
}

TEST(ValueText, Refused) {
    for (const auto& row : Table(R"table(
        std_logic | _ | 2 | 01 | 'x | "1" | (1)
        state | done | idle idle | i | 'idle' | \a\\,b\
        letters | A | c
        character | ab
        integer | 2147483648 | -2147483649 | 99999999999999999999999 | 1e10 | 1e-1 | 1.0 | 1__0 | _1
        integer | 1_ | --1 | -16#-1# | 1#0# | 17#0# | 16#G# | 16## | 16#1#1 | 16#1#e | 0x10 | 1 2
        small | 16 | -4
        real | 1e309 | 1e99999999999999999999999 | 0.00000000001e3_30 | .5 | 5. | 1e | inf | nan
        real | 1.5.2 | 1._5
        unit | 1.0000001 | -1e-9
        pi | 3.1416
        slv4 | 010 | 01010 | 01a0 | "010" | "01010" | "0101 | X"G" | X"1F" | B"010" | B"_0101"
        slv4 | B"0101_" | B"01__01" | X"" | Y"1" | (0,1,0) | (0,1,0,1,0) | (0,1,0,1 | (0,1,,1)
        slv4 | (0,1,0,1)x | ()
        slv5 | X"1"
        quotes | "a"B" | X"7"
        states | idleRunq | (idle,Run)
        integers | 1,2 | 12 | (1,16) | "12"
        reals | (1.5)
        one | 5)table")) {
        for (std::size_t i = 1; i < row.size(); ++i) {
            EXPECT_EQ(Read(KTypeInfo(TypeText(row[0])), row[i]), "") << row[0] << ' ' << row[i];
        }
    }
    Bytes bytes(8, kUntouched);
    const KTypeInfo vector(TypeText("slv4"));
    const KTypeInfo record("r#0#1 a e#3#bitc2 01");
    for (const int size : {3, 0, -1}) {
        EXPECT_FALSE(vector.GetBytes("0101", bytes.data(), size, 2, 0));
    }
    EXPECT_FALSE(record.GetBytes("0", bytes.data(), 8, 2, 0));
    EXPECT_FALSE(record.GetBytes("", bytes.data(), 8, 2, 0));
    EXPECT_STREQ(record.GetValueString(bytes.data(), 10, 0, -1), "");
    EXPECT_EQ(bytes, Bytes(8, kUntouched));
}

TEST(ValueText, Written) {
    const struct {
        const char* type;
        const char* read;  // the value, in a form tested above
        int radix;
        const char* plain;
        const char* quoted;
    } rows[] = {
        {"std_logic", "Z", 10, "Z", "'Z'"},
        {"state", "RUN", 10, "Run", "Run"},
        {"state", "q", 10, "'q'", "'q'"},
        {"letters", "'", 10, "'", "'''"},
        {"character", "A", 10, "'A'", "'A'"},
        {"character", "nul", 10, "NUL", "NUL"},
        {"integer", "-255", 10, "-255", "-255"},
        {"integer", "-255", 16, "-16#FF#", "-16#FF#"},
        {"integer", "10", 2, "2#1010#", "2#1010#"},
        {"integer", "8", 8, "8#10#", "8#10#"},
        {"integer", "8", 3, "8", "8"},
        {"integer", "-2147483648", 2, "-2#10000000000000000000000000000000#",
         "-2#10000000000000000000000000000000#"},
        {"integer", "0", 16, "16#0#", "16#0#"},
        {"real", "0.1", 10, "0.1", "0.1"},
        {"real", "100", 2, "100", "100"},
        {"real", "1e20", 10, "1e+20", "1e+20"},
        {"real", "5e-324", 10, "5e-324", "5e-324"},
        {"slv4", "01xZ", 2, "01XZ", "\"01XZ\""},
        {"grid", "x\"7\"", 2, "0111", "\"0111\""},
        {"states", "qQq", 2, "qQq", "\"qQq\""},
        {"states", "(q,idle,\\A\\\\,b\\)", 2, "('q',idle,\\A\\\\,b\\)", "('q',idle,\\A\\\\,b\\)"},
        {"quotes", "('a','\"',''')", 2, "a\"'", "\"a\"\"'\""},
        {"string3", "abc", 2, "abc", "\"abc\""},
        {"string3", "(LF,'a',' ')", 2, "(LF,'a',' ')", "(LF,'a',' ')"},
        {"integers", "(15,-3)", 16, "(15,-3)", "(15,-3)"},
        {"reals", "(1.5,-2)", 2, "(1.5,-2)", "(1.5,-2)"},
        {"one", "(5)", 2, "(5)", "(5)"},
    };
    for (const auto& row : rows) {
        const KTypeInfo type(TypeText(row.type));
        Bytes bytes(64);
        ASSERT_TRUE(type.GetBytes(row.read, bytes.data(), 64, 2, 0)) << row.type << row.read;
        EXPECT_STREQ(type.GetValueString(bytes.data(), row.radix, 0, -1), row.plain);
        EXPECT_STREQ(type.GetValueString(bytes.data(), row.radix, 2, -1), row.quoted);
    }
}

TEST(ValueText, ElementsOfTwoBytes) {
    std::string text = "ax 1 rict0 2 ex s302 '0 '1 ";
    for (int i = 0; i < 300; ++i) {
        text += "s" + std::to_string(i) + ' ';
    }
    const KTypeInfo type{CString(std::string_view(text))};
    const struct {
        const char* value;
        Bytes bytes;
    } rows[] = {{"101", {1, 0, 0, 0, 1, 0}}, {"(s299,'1',s0)", {0x2D, 1, 1, 0, 2, 0}}};
    for (const auto& row : rows) {
        Bytes bytes(6);
        ASSERT_TRUE(type.GetBytes(row.value, bytes.data(), 6, 2, 0));
        EXPECT_EQ(bytes, row.bytes);
        EXPECT_STREQ(type.GetValueString(bytes.data(), 2, 0, -1), row.value);
    }
}

TEST(ValueText, LongNumbers) {
    const std::string zeros(2000, '0');
    EXPECT_EQ(Read(KTypeInfo(TypeText("integer")), zeros + "_7"), "7");
    EXPECT_EQ(Read(KTypeInfo(TypeText("real")), zeros + "7." + zeros), "7");
    EXPECT_EQ(Read(KTypeInfo(TypeText("real")), "0." + zeros + "1e2000"), "0.10000000000000001");
    EXPECT_EQ(Read(KTypeInfo(TypeText("real")), zeros + "_7"), "");
    EXPECT_EQ(Read(KTypeInfo(TypeText("real")), "0." + zeros + "1"), "0");
    EXPECT_EQ(Read(KTypeInfo(TypeText("real")), "1" + zeros), "");
}

TEST(ValueText, BytesWithoutText) {
    const auto expect_none = [](const char* type, const Bytes& bytes) {
        for (const unsigned option : {0U, 2U}) {
            EXPECT_STREQ(KTypeInfo(TypeText(type)).GetValueString(bytes.data(), 2, option, -1), "");
        }
    };
    expect_none("std_logic", {9});
    expect_none("state", {255});
    expect_none("slv4", {2, 3, 9, 3});
    expect_none("states", {0, 1, 5});
    for (const double number : {std::numeric_limits<double>::quiet_NaN(),
                                std::numeric_limits<double>::infinity(), -HUGE_VAL}) {
        Bytes bytes(16);
        std::memcpy(&bytes[8], &number, sizeof number);
        expect_none("reals", bytes);
        std::memcpy(&bytes[0], &number, sizeof number);
        expect_none("real", bytes);
    }
}

void StoreRandom(Random& random, const KnownType& scalar, unsigned char* at, int size) {
    std::uint64_t bits = random.Bits();
    if (scalar.kind == KTypeInfo::KindEnum) {
        bits = random.Below(scalar.literals.size());
    } else if (scalar.kind == KTypeInfo::KindInteger) {
        const auto [low, high] = std::minmax(scalar.ranges[0].left, scalar.ranges[0].right);
        const auto span = static_cast<std::uint64_t>(std::int64_t{high} - low) + 1;
        bits = static_cast<std::uint64_t>(low) + random.Bits() % span;
    } else if (((bits >> 52) & 0x7FF) == 0x7FF) {
        bits = 0;  // not a number
    }
    for (int i = 0; i < size; ++i) {
        at[i] = static_cast<unsigned char>(bits >> (8 * i));
    }
}

TEST(ValueText, RandomValuesReadBack) {
    int simple = 0;
    for (std::uint32_t seed = 1; seed <= 6000; ++seed) {
        Random random(seed);
        const KnownType known = RandomType(random, static_cast<int>(random.Below(2)), true);
        const KTypeInfo type(CString(Describe(known).c_str()));
        if (!type.IsSimple()) {
            continue;
        }
        ++simple;
        const KnownType& scalar = known.IsScalar() ? known : known.parts[0];
        const KTypeInfo& element = known.IsScalar() ? type : type.GetArrayElementKTypeInfo();
        Bytes bytes(static_cast<std::size_t>(type.GetSimpleSize()));
        const int step = element.GetScalarSize();
        for (std::size_t i = 0; i < bytes.size(); i += static_cast<std::size_t>(step)) {
            StoreRandom(random, scalar, &bytes[i], step);
        }
        for (const int radix : {2, 8, 10, 16}) {
            for (const unsigned option : {0U, 2U}) {
                const CString text = type.GetValueString(bytes.data(), radix, option, -1);
                Bytes again(bytes.size());
                ASSERT_TRUE(type.GetBytes(text, again.data(), type.GetSimpleSize(), 2, 0))
                    << seed << ' ' << type.GetTypeInfoString() << ' ' << text;
                ASSERT_EQ(again, bytes) << seed << ' ' << type.GetTypeInfoString() << ' ' << text;
            }
        }
    }
    EXPECT_GT(simple, 2000);
}

}  // namespace
}  // namespace corv::test
