// Every request for memory fails once: the operation gives its failure, and the object still works.

#include <new>

#include "corv/typeinfo/type_builders.h"
#include "corv/typeinfo/type_info.h"
#include "corv/typeinfo/vhdl_type.h"
#include "tests/support/test.h"

namespace corv::test {
namespace {

// Names and texts beyond what a short text keeps without memory.
const CString kRecord(
    "r#25#a record with a long name2 a_field_with_a_long_name a#1#x1 rict0 31 e#3#bitc2 01 "
    "another_field_with_a_name e#1#xs2 a_literal_with_a_long_name b ");

TEST(TypeAllocation, ReadingAndChecking) {
    FailsUnchanged([] {}, [] { return KTypeInfo(kRecord).GetKind(); }, KTypeInfo::KindNone,
                   [] { return 0; });
    EXPECT_EQ(FailEveryAllocation([] { return KTypeInfo::CheckTypeInfo(kRecord); }, [](bool) {}),
              0);
}

TEST(TypeAllocation, TextsOfAType) {
    const KTypeInfo type(kRecord);
    const KTypeInfo& bits = type.GetFieldKTypeInfo(0);
    const KTypeInfo& literals = type.GetFieldKTypeInfo(1);
    const std::vector<unsigned char> bytes(32, 1);
    const std::function<CString()> questions[] = {
        [&] { return type.GetTypeIdentifier(); },
        [&] { return type.GetFieldName(1); },
        [&] { return type.GetFieldTypeInfo(0); },
        [&] { return CString(literals.GetTypeInfoString().View()); },
        [&] { return literals.GetValue(0); },
        [&] { return literals.GetValue(0, true); },
        [&] { return bits.GetValueString(bytes.data(), 2, 2, -1); },
    };
    for (const auto& question : questions) {
        FailEveryAllocation([] {},
                            [&] {
                                try {
                                    return question();
                                } catch (const std::bad_alloc&) {
                                    return CString();  // the copy that this test makes
                                }
                            },
                            [](const CString& text) { EXPECT_STREQ(text, ""); });
        EXPECT_FALSE(question().IsEmpty());
    }
}

TEST(TypeAllocation, ReadingValuesNeedsNone) {
    const KTypeInfo bits("a#1#x1 rict0 63 e#3#bitc2 01");
    const KTypeInfo reals("a#1#x1 rict0 1 f#1#xrrct-1e+300 1e+300");
    const CString bit_text("X\"0123456789abcdef\"");
    const CString real_text("(1_000_000_000.000_000_001, -1_0)");
    std::vector<unsigned char> bytes(64);
    FailingAlloc failing(1, true);
    EXPECT_TRUE(bits.GetBytes(bit_text, bytes.data(), 64, 2, 0));
    EXPECT_TRUE(reals.GetBytes(real_text, bytes.data(), 64, 2, 0));
    EXPECT_FALSE(DisarmFailingAlloc());
}

TEST(TypeAllocation, Builders) {
    const TArrayRange range{7, 0};
    const TEnumValue literals[] = {"a literal with a long name", "b"};
    const TEnumValue characters[] = {"0", "1"};
    const TRecordField field("a field with a long name", "and a type that is no type");
    char buffer[1000];
    std::uint32_t size = sizeof buffer;
    const std::function<HRESULT()> builders[] = {
        [&] { return CreateArrayTypeInfo("a long array name", &range, 1, "x", buffer, &size); },
        [&] { return CreateRecordTypeInfo("a long record name", &field, 1, buffer, &size); },
        [&] { return CreateEnumTypeInfo("a name", literals, 2, buffer, &size); },
        [&] { return CreateEnumTypeInfo("a long enumeration name", characters, 2, buffer, &size); },
    };
    for (const auto& build : builders) {
        FailsUnchanged([&] { buffer[0] = '?'; }, build, E_OUTOFMEMORY, [&] { return buffer[0]; });
        EXPECT_NE(buffer[0], '?');
    }
    EXPECT_EQ(
        FailEveryAllocation([&] { return CreateStdTypeInfo(5, buffer, &size); }, [](HRESULT) {}),
        0);
}

// Whether arrays can be made to fail; some sanitizers bring their own.
bool ArraysFail() {
    const FailingAlloc failing(1);
    char* volatile const array = new (std::nothrow) char[1];
    delete[] array;
    return array == nullptr;
}

TEST(TypeAllocation, ValueClassesAreLeftWithoutText) {
    TEnumValue value("short");
    const int failures = FailEveryAllocation(
        [&] {
            value.Set("longer than before");
            return value.GetLen();
        },
        [&](int length) {
            EXPECT_EQ(length, 0);
            EXPECT_EQ(value.Get(), nullptr);
            value.Set("short");
        });
    EXPECT_EQ(failures, ArraysFail() ? 1 : 0);
    EXPECT_STREQ(value.Get(), "longer than before");
}

TEST(TypeAllocation, Vhdl) {
    const char* const vhdl =
        "record a, b : std_logic_vector(3 downto 0); c : array (0 to 3, 1 to 2) of (idle, run, "
        "'1'); d : integer range 0 to 99; e : real range 0.0 to 1.0; f : bit; end record point";
    CString type;
    ASSERT_TRUE(TypeFromVhdl(vhdl, type));
    const CString good = type;
    Problem problem{0, 0, ""};
    const auto prepare = [&] {
        type = "untouched";
        problem.sentence = "old";
    };
    const auto show = [&] { return std::string(type) + ": " + problem.sentence; };
    FailsLeaving(
        prepare, [&] { return TypeFromVhdl(vhdl, type, &problem); }, false, show,
        "untouched: out of memory");
    EXPECT_EQ(type, good);

    CString text;
    FailsUnchanged([&] { text = "untouched"; }, [&] { return TypeToVhdl(good, text); }, false,
                   [&] { return text; });
    EXPECT_STREQ(text.Left(6), "record");

    FailsLeaving(
        prepare, [&] { return TypeFromVhdl("a_type_without_a_meaning", type, &problem); }, false,
        show, "untouched: out of memory");
    EXPECT_NE(problem.sentence.find("unknown type"), std::string::npos);
}

}  // namespace
}  // namespace corv::test
