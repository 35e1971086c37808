#include "corv/typeinfo/type_info.h"

#include "tests/support/test.h"
#include "tests/typeinfo/random_type.h"
#include "typeinfo/named_types.h"

namespace corv::test {
namespace {

CString Text(const std::string& text) {
    return CString(std::string_view(text));
}

std::string NestedArrays(int levels) {
    std::string text;
    for (int i = 1; i < levels; ++i) {
        text += "a#0#0  ";
    }
    return text + "eb c2 01";
}

// The parts between bars, blanks included.
std::vector<CString> Parts(const std::string& text) {
    std::vector<CString> parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, '|');) {
        parts.push_back(Text(part));
    }
    return parts;
}

constexpr const char* kTypes =
    "e#3#bitc2 01|e#0#c0 |e c1 x|e#4#a #3s2 '  '' |ex s0 |e#1#xs2 a 'b |"
    "iinteger rict-2147483648 2147483647|i#1#xriud5 -5|i#1#xrict007 8|"
    "freal rrct-1.79769e+308 1.79769e+308|fx rrud1.5 -2|f#1#xrrct1e-400 5|a#5#bus()0  eb c2 01|"
    "ax 2 rict0 1 ricd1 0 ix rict0 1|r#0#0 |rx 1 a ea c1  ";

TEST(TypeInfo, CheckAccepts) {
    for (const CString& text : Parts(kTypes)) {
        EXPECT_TRUE(KTypeInfo::CheckTypeInfo(text)) << text;
    }
    for (const std::string_view text : typeinfo::kStandardTypes) {
        EXPECT_TRUE(KTypeInfo::CheckTypeInfo(CString(text))) << text;
    }
}

constexpr const char* kNoTypes =
    "| |x#1#yc2 01| e#3#bitc2 01|E#3#bitc2 01|e#3#bitc2 01 |e#3#bitc2 012|e#3#bitc3 01|"
    "e#4#bitc2 01|e#-3#bitc2 01|e##bitc2 01|e#3bitc2 01|e#99999999999999999999#bitc2 01|"
    "e#3#bitx2 01|e#3#bitc-2 01|e#3#bitc+2 01|e#3#bitc 01|e#3#bitc2|e#3#bitc4294967296 0|"
    "e#1#xs2 a b|e#1#xs2 a  b |e#1#xs1 'ab |e#1#xs1 '|e#1#xs1 ' |e#1#xs4294967295 a |e#1#xc2 0\n|"
    "e#1\n#xc1 0|e#2#x\rc1 0|i#1#xrict0|i#1#xrict0 |i#1#xrict0 1 |i#1#xrict0  1|"
    "i#1#xrict2147483648 0|i#1#xrict0 -2147483649|i#1#xrict+1 2|i#1#xrict0 1.5|i#1#xrict0x 1|"
    "i#1#xrrct0 1|i#1#xricx0 1|i#1#xrixt0 1|i#1#xxict0 1|i#1#xrict- 1|f#1#xrict0 1|"
    "f#1#xrrct0 inf|f#1#xrrctnan 1|f#1#xrrct0 1e999|f#1#xrrct0 +1|f#1#xrrct0 1_0|f#1#xrrct0 1.|"
    "f#1#xrrct0 .5|f#1#xrrct0 1e|f#1#xrrct0 0x1|a#1#x0 e#3#bitc2 01|a#1#x1 rict0 1|"
    "a#1#x1 rict0 1 |a#1#x1 rrct0 1 eb c1 x|a#1#x2 rict0 1 eb c1 x|a#1#x1 rict0 1  eb c1 x|"
    "a#1#x4294967295 rict0 1 |r#1#x1 |r#1#x1 a|r#1#x1 a |r#1#x1 a e#3#bitc2 01 |"
    "r#1#x1  e#3#bitc2 01|r#1#x2 a e#3#bitc2 01|r#1#x1 a e#3#bitc2 01 b e#3#bitc2 01|"
    "r#1#x2 a e#3#bitc2 01b e#3#bitc2 01";

TEST(TypeInfo, CheckRefuses) {
    for (const CString& text : Parts(kNoTypes)) {
        EXPECT_FALSE(KTypeInfo::CheckTypeInfo(text)) << text;
        const KTypeInfo type(text);
        EXPECT_EQ(type.GetKind(), KTypeInfo::KindNone) << text;
        EXPECT_STREQ(type.GetTypeInfoString(), text);
    }
    EXPECT_FALSE(KTypeInfo::CheckTypeInfo(Text(std::string("e#1#xc1 \0", 9))));
}

TEST(TypeInfo, Limits) {
    EXPECT_TRUE(KTypeInfo::CheckTypeInfo(Text(NestedArrays(64))));
    EXPECT_FALSE(KTypeInfo::CheckTypeInfo(Text(NestedArrays(65))));
    EXPECT_FALSE(KTypeInfo::CheckTypeInfo(Text(NestedArrays(1'000'000))));
    const std::size_t most = std::size_t{16} << 20;
    const std::string head = "e#1#xc" + std::to_string(most - 15) + " ";
    const std::string longest = head + std::string(most - head.size(), 'q');
    ASSERT_EQ(head.size(), 15U);
    EXPECT_TRUE(KTypeInfo::CheckTypeInfo(Text(longest)));
    EXPECT_FALSE(KTypeInfo::CheckTypeInfo(
        Text("e#1#xc" + std::to_string(most - 14) + " " + std::string(most - 14, 'q'))));
}

TEST(TypeInfo, StandardTypes) {
    const auto& texts = typeinfo::kStandardTypes;
    const KTypeInfo character{CString(texts[5])};
    ASSERT_EQ(character.GetNbOfValues(), 256);
    EXPECT_EQ(texts[5].size(), 874U);
    const struct {
        int position;
        const char* literal;
        const char* vhdl;
    } rows[] = {{0, "NUL", "NUL"},        {31, "USP", "USP"},    {32, "' ", "' '"},
                {39, "''", "'''"},        {65, "'A", "'A'"},     {127, "DEL", "DEL"},
                {128, "C128", "C128"},    {159, "C159", "C159"}, {160, "'\xa0", "'\xa0'"},
                {255, "'\xff", "'\xff'"}, {256, "", ""},         {-1, "", ""}};
    for (const auto& row : rows) {
        EXPECT_STREQ(character.GetValue(row.position), row.literal);
        EXPECT_STREQ(character.GetValue(row.position, true), row.vhdl);
    }
    const KTypeInfo vector{CString(texts[7])};
    const KTypeInfo& element = vector.GetArrayElementKTypeInfo();
    EXPECT_STREQ(vector.GetTypeIdentifier(), "std_logic_vector");
    EXPECT_EQ(vector.GetNbOfElements(), 2147483648LL);
    EXPECT_EQ(vector.GetSimpleSize(), 2147483647);
    EXPECT_STREQ(element.GetTypeIdentifier(), "std_logic");
    EXPECT_STREQ(element.GetTypeInfoString(), "estd_logic c9 UX01ZWLH-");
    EXPECT_EQ(element.GetNbOfValues(), 9);
    EXPECT_STREQ(element.GetValue(4, true), "'Z'");
    std::vector<unsigned char> bytes(16);
    EXPECT_FALSE(vector.GetBytes("0101", bytes.data(), 2147483647, 2, 0));
    EXPECT_STREQ(vector.GetValueString(bytes.data(), 2, 0, -1), "");
}

TEST(TypeInfo, Sizes) {
    const auto words = [](int count) {
        std::string text = "ex s" + std::to_string(count) + " ";
        for (int i = 0; i < count; ++i) {
            text += "w ";
        }
        return Text(text);
    };
    const struct {
        CString text;
        int scalar;
        int simple;
        std::int64_t elements;
    } rows[] = {{"ex c0 ", 1, 1, 0},
                {words(256), 1, 1, 0},
                {words(257), 2, 2, 0},
                {words(65536), 2, 2, 0},
                {words(65537), 4, 4, 0},
                {"ix rict0 1", 4, 4, 0},
                {"fx rrct0 1", 8, 8, 0},
                {"ax 1 rict7 0 fx rrct0 1", 0, 64, 8},
                {"ax 0  ix rict0 1", 0, 4, 1},
                {"ax 3 rict0 1 ricd3 1 rict-1 -1 ix rict0 1", 0, 24, 6},
                {"ax 1 rict0 1 ax 1 rict0 2 ex c1 0", 0, 0, 2},
                {"ax 1 rict-2147483648 2147483647 ex c1 0", 0, 2147483647, 4294967296},
                {"ax 2 rict-2147483648 2147483647 rict-2147483648 2147483647 fx rrct0 1", 0,
                 2147483647, 9223372036854775807},
                {"rx 0 ", 0, 0, 0},
                {"", 0, 0, 0}};
    for (const auto& row : rows) {
        const KTypeInfo type(row.text);
        EXPECT_EQ(type.GetScalarSize(), row.scalar) << row.text;
        EXPECT_EQ(type.GetSimpleSize(), row.simple) << row.text;
        EXPECT_EQ(type.GetNbOfElements(), row.elements) << row.text;
        EXPECT_EQ(type.IsScalar(), row.scalar != 0) << row.text;
        EXPECT_EQ(type.IsSimple(), row.simple != 0) << row.text;
    }
}

// Everything that can be asked, of any type, with indices in and out of range.
void AskEverything(const KTypeInfo& type) {
    std::vector<unsigned char> bytes(64);
    for (const int index : {-2147483647 - 1, -1, 0, 1, 2, 2147483647}) {
        int left = 5;
        int right = 5;
        KTypeInfo::EDirection direction = KTypeInfo::Downto;
        type.GetArrayDimensionRanges(index, left, right, direction);
        if (index < 0 || index >= type.GetNbOfDimensions()) {
            EXPECT_TRUE(left == 0 && right == 0 && direction == KTypeInfo::To);
        }
        if (index < 0 || index >= type.GetNbOfFields()) {
            EXPECT_STREQ(type.GetFieldName(index), "");
            EXPECT_STREQ(type.GetFieldTypeInfo(index), "");
            EXPECT_EQ(type.GetFieldKTypeInfo(index).GetKind(), KTypeInfo::KindNone);
        }
        EXPECT_EQ(type.GetValue(index).IsEmpty(), index < 0 || index >= type.GetNbOfValues());
    }
    if (type.GetKind() != KTypeInfo::KindArray) {
        EXPECT_EQ(type.GetArrayElementKTypeInfo().GetKind(), KTypeInfo::KindNone);
        EXPECT_STREQ(type.GetArrayElementTypeInfo(), "");
    }
    type.GetTypeInfoString();
    if (type.GetSimpleSize() <= 64) {
        type.GetValueString(bytes.data(), 10, 2, -1);
        type.GetBytes("0", bytes.data(), 64, 2, 0);
    }
    EXPECT_STREQ(type.GetValueString(nullptr, 10, 0, -1), "");
    EXPECT_FALSE(type.GetBytes("0", nullptr, 64, 2, 0));
}

TEST(TypeInfo, TruncatedAndMutatedStrings) {
    Random random(4);
    const std::string texts[] = {
        "e#9#std_logicc9 UX01ZWLH-",
        "e#4#kinds5 idle '  '' 'A run ",
        "i#7#integerrict-2147483648 2147483647",
        "f#4#realrrct-1.79769e+308 1.79769e+308",
        "a#16#std_logic_vector1 riut0 2147483647 estd_logic c9 UX01ZWLH-",
        "r#1#r3 a e#3#bitc2 01 b a#9#b(0 to 3)1 rict0 3 e#3#bitc2 01 c r#0#1 d fx rrcd1 0",
    };
    for (const std::string& text : texts) {
        ASSERT_TRUE(KTypeInfo::CheckTypeInfo(Text(text))) << text;
        for (std::size_t length = 0; length < text.size(); ++length) {
            const std::string cut = text.substr(0, length);
            const bool within_number =  // a shorter last bound is still a bound
                !cut.empty() && cut.back() >= '0' && cut.back() <= '9' &&
                std::string_view("0123456789.e").find(text[length]) != std::string_view::npos;
            EXPECT_TRUE(within_number || !KTypeInfo::CheckTypeInfo(Text(cut))) << cut;
            AskEverything(KTypeInfo(Text(cut)));
        }
        for (int i = 0; i < 3000; ++i) {
            const CString mutated = Text(Mutate(random, text));
            const KTypeInfo type(mutated);
            ASSERT_EQ(type.GetKind() != KTypeInfo::KindNone, KTypeInfo::CheckTypeInfo(mutated))
                << mutated;
            AskEverything(type);
            AskEverything(type.GetArrayElementKTypeInfo());
            AskEverything(type.GetFieldKTypeInfo(0));
        }
    }
}

void ExpectIs(const KTypeInfo& type, const KnownType& known) {
    const bool is_array = known.kind == KTypeInfo::KindArray;
    ASSERT_EQ(type.GetKind(), known.kind);
    ASSERT_EQ(type.GetTypeInfoString(), Describe(known).c_str());
    ASSERT_EQ(type.GetNbOfValues(), static_cast<int>(known.literals.size()));
    for (std::size_t i = 0; i < known.literals.size(); ++i) {
        ASSERT_EQ(type.GetValue(static_cast<int>(i)), known.literals[i].c_str());
    }
    ASSERT_EQ(type.GetNbOfDimensions(), is_array ? static_cast<int>(known.ranges.size()) : 0);
    for (int i = 0; i < type.GetNbOfDimensions(); ++i) {
        const TArrayRange& range = known.ranges[static_cast<std::size_t>(i)];
        int left = 0;
        int right = 0;
        KTypeInfo::EDirection direction{};
        type.GetArrayDimensionRanges(i, left, right, direction);
        ASSERT_EQ(left, range.left);
        ASSERT_EQ(right, range.right);
        ASSERT_EQ(direction, left < right ? KTypeInfo::To : KTypeInfo::Downto);
    }
    if (is_array) {
        ASSERT_EQ(type.GetNbOfElements(), known.Elements());
        ASSERT_EQ(type.IsSimple(), known.parts[0].IsScalar());
        ASSERT_EQ(type.GetArrayElementTypeInfo(), Describe(known.parts[0]).c_str());
        ASSERT_EQ(&type.GetArrayElementKTypeInfo(), &type.GetArrayElementKTypeInfo());
        ASSERT_NO_FATAL_FAILURE(ExpectIs(type.GetArrayElementKTypeInfo(), known.parts[0]));
    } else {
        ASSERT_EQ(type.GetTypeIdentifier(), known.kind == KTypeInfo::KindFloat
                                                ? CString("real")
                                                : CString(known.name.c_str()));
    }
    ASSERT_EQ(type.GetNbOfFields(), static_cast<int>(known.field_names.size()));
    for (int i = 0; i < type.GetNbOfFields(); ++i) {
        const auto at = static_cast<std::size_t>(i);
        ASSERT_EQ(type.GetFieldName(i), known.field_names[at].c_str());
        ASSERT_EQ(type.GetFieldTypeInfo(i), Describe(known.parts[at]).c_str());
        ASSERT_NO_FATAL_FAILURE(ExpectIs(type.GetFieldKTypeInfo(i), known.parts[at]));
    }
}

TEST(TypeInfo, RandomTypesAnswerWhatTheyWereBuiltFrom) {
    for (std::uint32_t seed = 1; seed <= 2000; ++seed) {
        Random random(seed);
        const KnownType known = RandomType(random, static_cast<int>(random.Below(5)), true);
        const CString text = Text(Describe(known));
        ASSERT_TRUE(KTypeInfo::CheckTypeInfo(text)) << seed << ' ' << text;
        const KTypeInfo type(text);
        ASSERT_NO_FATAL_FAILURE(ExpectIs(type, known)) << seed << ' ' << text;
    }
}

TEST(TypeInfo, QuestionsNeedNoMemory) {
    std::string text = "r#1#r300 ";
    for (int i = 0; i < 300; ++i) {
        text += (i > 0 ? " f" : "f") + std::to_string(i) + " a#1#a2 rict0 3 ricd7 0 e#3#bitc2 01";
    }
    const KTypeInfo type(Text(text));
    ASSERT_EQ(type.GetNbOfFields(), 300);
    std::int64_t elements = 0;
    FailingAlloc failing(1, true);
    for (int i = 0; i < type.GetNbOfFields(); ++i) {
        const KTypeInfo& field = type.GetFieldKTypeInfo(i);
        int left = 0;
        int right = 0;
        KTypeInfo::EDirection direction{};
        field.GetArrayDimensionRanges(1, left, right, direction);
        elements += field.GetNbOfElements() + left + right +
                    field.GetArrayElementKTypeInfo().GetNbOfValues() + field.GetSimpleSize();
    }
    EXPECT_EQ(type.GetArrayElementKTypeInfo().GetKind(), KTypeInfo::KindNone);
    EXPECT_FALSE(DisarmFailingAlloc());
    EXPECT_EQ(elements, 300 * (32 + 7 + 2 + 32));
}

}  // namespace
}  // namespace corv::test
