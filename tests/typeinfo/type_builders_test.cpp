#include "corv/typeinfo/type_builders.h"

#include "corv/typeinfo/type_info.h"
#include "tests/support/test.h"
#include "tests/typeinfo/random_type.h"
#include "typeinfo/named_types.h"

namespace corv::test {
namespace {

using Build = std::function<HRESULT(char*, std::uint32_t*)>;

TEST(TypeBuilders, Strings) {
    const TArrayRange ranges[] = {{7, 0}, {0, 0}, {-2, 2147483647}};
    const TEnumValue literals[] = {"0", "1", "Z", "HI", "'A"};
    const TRecordField fields[] = {{"a", "e#3#bitc2 01"}, {"b", "not a type"}};
    const struct {
        Build build;
        const char* text;
    } rows[] = {
        {[&](char* b, std::uint32_t* s) { return CreateStdTypeInfo(1, b, s); },
         "e#9#std_logicc9 UX01ZWLH-"},
        {[&](char* b, std::uint32_t* s) {
             return CreateArrayTypeInfo("bus", ranges, 1, "e#3#bitc2 01", b, s);
         },
         "a#15#bus(7 downto 0)1 ricd7 0 e#3#bitc2 01"},
        {[&](char* b, std::uint32_t* s) { return CreateArrayTypeInfo("", ranges, 3, "x", b, s); },
         "a#40#(7 downto 0,0 downto 0,-2 to 2147483647)3 ricd7 0 ricd0 0 rict-2 2147483647 x"},
        {[&](char* b, std::uint32_t* s) { return CreateArrayTypeInfo("b", ranges, 0, "", b, s); },
         "a#3#b()0  "},
        {[&](char* b, std::uint32_t* s) { return CreateEnumTypeInfo("e", literals, 3, b, s); },
         "e#1#ec3 01Z"},
        {[&](char* b, std::uint32_t* s) { return CreateEnumTypeInfo("e", literals, 5, b, s); },
         "e#1#es5 0 1 Z HI 'A "},
        {[&](char* b, std::uint32_t* s) { return CreateEnumTypeInfo("e", literals, 0, b, s); },
         "e#1#ec0 "},
        {[&](char* b, std::uint32_t* s) { return CreateRecordTypeInfo("rec", fields, 2, b, s); },
         "r#3#rec2 a e#3#bitc2 01 b not a type"},
        {[&](char* b, std::uint32_t* s) { return CreateRecordTypeInfo("", fields, 0, b, s); },
         "r#0#0 "},
    };
    for (const auto& row : rows) {
        const auto needed = static_cast<std::uint32_t>(std::strlen(row.text) + 1);
        std::uint32_t size = 5;
        EXPECT_EQ(row.build(nullptr, &size), S_OK);
        EXPECT_EQ(size, needed) << row.text;
        for (const std::uint32_t given : {0U, needed - 1, needed, needed + 1}) {
            std::string buffer(needed + 2, '?');
            const std::string untouched = buffer;
            size = given;
            const HRESULT result = row.build(buffer.data(), &size);
            EXPECT_EQ(size, given);
            EXPECT_EQ(result, given < needed ? E_INVALIDARG : S_OK);
            EXPECT_EQ(buffer, given < needed ? untouched : std::string(row.text, needed) + "??");
        }
        EXPECT_EQ(row.build(nullptr, nullptr), E_INVALIDARG);
        char buffer[1000];
        EXPECT_EQ(row.build(buffer, nullptr), E_INVALIDARG);
    }
}

TEST(TypeBuilders, StandardTypes) {
    for (int index = 0; index < 9; ++index) {
        const std::string text = Built([index](char* buffer, std::uint32_t* size) {
            return CreateStdTypeInfo(index, buffer, size);
        });
        EXPECT_EQ(text, typeinfo::kStandardTypes[static_cast<std::size_t>(index)]);
    }
    std::uint32_t size = 7;
    EXPECT_EQ(CreateStdTypeInfo(5, nullptr, &size), S_OK);
    EXPECT_EQ(size, 875U);
    for (const int index : {-1, 9, 2147483647}) {
        EXPECT_EQ(CreateStdTypeInfo(index, nullptr, &size), E_INVALIDARG);
    }
    EXPECT_EQ(size, 875U);
}

TEST(TypeBuilders, NullArguments) {
    const TArrayRange range{0, 1};
    const TEnumValue literals[] = {"a", {}};
    const TRecordField fields[] = {{"a", "b"}, {"a", nullptr}, {nullptr, "b"}};
    std::uint32_t size = 7;
    EXPECT_EQ(CreateArrayTypeInfo(nullptr, &range, 1, "b", nullptr, &size), E_INVALIDARG);
    EXPECT_EQ(CreateArrayTypeInfo("a", nullptr, 0, "b", nullptr, &size), E_INVALIDARG);
    EXPECT_EQ(CreateArrayTypeInfo("a", &range, 1, nullptr, nullptr, &size), E_INVALIDARG);
    EXPECT_EQ(CreateRecordTypeInfo(nullptr, fields, 1, nullptr, &size), E_INVALIDARG);
    EXPECT_EQ(CreateRecordTypeInfo("a", nullptr, 0, nullptr, &size), E_INVALIDARG);
    EXPECT_EQ(CreateRecordTypeInfo("a", fields, 2, nullptr, &size), E_INVALIDARG);
    EXPECT_EQ(CreateRecordTypeInfo("a", fields + 2, 1, nullptr, &size), E_INVALIDARG);
    EXPECT_EQ(CreateEnumTypeInfo(nullptr, literals, 1, nullptr, &size), E_INVALIDARG);
    EXPECT_EQ(CreateEnumTypeInfo("a", nullptr, 0, nullptr, &size), E_INVALIDARG);
    EXPECT_EQ(CreateEnumTypeInfo("a", literals, 2, nullptr, &size), E_INVALIDARG);
    EXPECT_EQ(size, 7U);
}

TEST(TypeBuilders, LongestArrayName) {
    const TArrayRange range{7, 0};
    const std::string longest(259 - std::strlen("(7 downto 0)"), 'n');
    std::uint32_t size = 0;
    EXPECT_EQ(CreateArrayTypeInfo(longest.c_str(), &range, 1, "b", nullptr, &size), S_OK);
    EXPECT_EQ(CreateArrayTypeInfo((longest + "n").c_str(), &range, 1, "b", nullptr, &size),
              E_INVALIDARG);
}

TEST(TypeBuilders, ValuesOwnTheirTexts) {
    std::string source = "running";
    TEnumValue value(source.c_str());
    source[0] = 'R';
    EXPECT_STREQ(value.Get(), "running");
    EXPECT_EQ(value.GetLen(), 7);

    const char* const storage = value.Get();
    value.Set("idle");
    EXPECT_EQ(value.Get(), storage);
    value.Set(value.Get() + 2);
    EXPECT_STREQ(value.Get(), "le");
    EXPECT_EQ(value.Get(), storage);
    value.Set("longer");
    EXPECT_STREQ(value.Get(), "longer");

    TEnumValue other;
    EXPECT_EQ(other.Get(), nullptr);
    EXPECT_EQ(other.GetLen(), 0);
    other = value;
    EXPECT_STREQ(other.Get(), "longer");
    EXPECT_NE(other.Get(), value.Get());
    other = *&other;
    EXPECT_STREQ(other.Get(), "longer");
    other = TEnumValue();
    EXPECT_EQ(other.Get(), nullptr);

    TRecordField field("a", "e#3#bitc2 01");
    TRecordField copy;
    EXPECT_EQ(copy.GetFieldName(), nullptr);
    EXPECT_EQ(copy.GetTypeInfo(), nullptr);
    copy = field;
    field.SetBoth("b", nullptr);
    EXPECT_STREQ(copy.GetFieldName(), "a");
    EXPECT_STREQ(copy.GetTypeInfo(), "e#3#bitc2 01");
    EXPECT_STREQ(field.GetFieldName(), "b");
    EXPECT_EQ(field.GetTypeInfo(), nullptr);
    // one pointer each, so that hosts' arrays of them look as the interface says
    static_assert(sizeof(TEnumValue) == sizeof(char*) && sizeof(TRecordField) == 2 * sizeof(char*));
    static_assert(sizeof(TArrayRange) == 8);
}

}  // namespace
}  // namespace corv::test
