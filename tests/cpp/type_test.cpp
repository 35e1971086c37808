#include "corv/cpp/type.h"

#include "tests/cpp/support.h"
#include "tests/support/test.h"

namespace corv::test {
namespace {

TEST(CppType, ReadsAndWritesValues) {
    // type | value | value as it is written
    const auto rows = Table(R"(
        std_logic                              | x       | X
        std_logic_vector(7 downto 0)           | X"A5"   | 10100101
        natural                                | 16#FF#  | 255
        real                                   | 1.5     | 1.5
        (idle, run, done)                      | RUN     | run
        array (0 to 2) of integer              | (1,2,3) | (1,2,3)
    )");
    for (const auto& row : rows) {
        SCOPED_TRACE(row[0]);
        const Type type(row[0]);
        const KTypeInfo model{CString(type.Description().c_str())};
        EXPECT_EQ(type.Vhdl(), row[0]);
        EXPECT_EQ(type.Kind(), model.GetKind());
        EXPECT_EQ(static_cast<int>(type.Size()), model.GetSimpleSize());
        std::vector<unsigned char> bytes(type.Size());
        ASSERT_TRUE(model.GetBytes(row[1].c_str(), bytes.data(), model.GetSimpleSize(), 2, 0));
        EXPECT_EQ(type.Bytes(row[1]), bytes);
        EXPECT_EQ(type.Text(bytes), row[2]);
        EXPECT_EQ(Type::FromDescription(type.Description()).Vhdl(), row[0]);
    }
}

TEST(CppType, TakesTypesApart) {
    const Type::Field field =
        Type("record valid : boolean; data : bit_vector(3 downto 0); end record").Fields().at(1);
    EXPECT_EQ(field.name, "data");
    EXPECT_EQ(field.type.ElementCount(), 4);
    EXPECT_EQ(field.type.Element().Literals(), (std::vector<std::string>{"'0'", "'1'"}));
    EXPECT_TRUE(Type("integer").Fields().empty());
}

TEST(CppType, SaysWhatIsWrong) {
    const Type logic("std_logic");
    EXPECT_EQ(Thrown([] { Type("std_logc"); }),
              "unknown type `std_logc`; did you mean `std_logic`?");
    EXPECT_EQ(Thrown([] { Type::FromDescription("e#3"); }), "`e#3` does not describe a type");
    EXPECT_EQ(Thrown([&] { logic.Bytes("5"); }), "`5` is not a value of the type");
    const std::vector<unsigned char> two{0, 0};
    EXPECT_EQ(Thrown([&] { Type("bit_vector(0 to 1)").Text(std::span(two).first(1)); }),
              "the bytes are not a value of the type");
    EXPECT_EQ(Thrown([&] { logic.Text(std::vector<unsigned char>{9}); }),
              "the bytes are not a value of the type");
    EXPECT_EQ(Thrown([&] { logic.Element(); }), "the type has no elements");
    EXPECT_EQ(Thrown([] { Type::FromDescription("e#3#abcc0 ").Vhdl(); }),
              "VHDL cannot express the type");
    try {
        const Type type("bit_vector(7 downto x)");
        ADD_FAILURE();
    } catch (const Error& error) {
        EXPECT_EQ(error.Position(), 20U);
        EXPECT_EQ(error.Length(), 1U);
    }
}

}  // namespace
}  // namespace corv::test
