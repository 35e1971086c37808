// What is read and written as VHDL is VHDL: a compiler of it takes each text, and refuses those
// that are refused here as no VHDL.

#include "corv/typeinfo/vhdl_type.h"
#include "tests/support/other_programs.h"
#include "tests/support/test.h"

namespace corv::test {
namespace {

constexpr const char* kAccepted = R"vhdl(
    std_logic ;; ieee.std_logic_1164.std_ulogic ;; boolean ;; severity_level ;; delay_length
    x01 ;; X01Z ;; ux01 ;; UX01Z ;; resolved std_ulogic ;; integer range 16#F# downto -1_0
    natural range 3 downto 3 ;; real range -1.0e-3 to 0.123456789 ;; time range 0 ns to 1.5 US
    time range 10 ps downto -1e3 fs ;; std_logic_vector(natural range 7 downto 0)
    std_logic_vector(positive range 8 downto 1) ;; bit_vector(integer range 7 downto 0)
    std_logic_vector(natural) ;; std_logic_vector(open) ;; STD_LOGIC_VECTOR(7 DOWNTO 0)
    string(1 to 8) ;; unsigned ;; u_unsigned(7 downto 0) ;; u_signed(7 downto 0)
    unresolved_unsigned(7 downto 0) ;; unresolved_signed(7 downto 0) ;; sfixed(3 downto -4)
    u_ufixed(3 downto -4) ;; u_sfixed(3 downto -4) ;; unresolved_sfixed(3 downto -4)
    unresolved_ufixed(3 downto -4) ;; float32 ;; float64 ;; float128 ;; u_float32
    unresolved_float64 ;; u_float(4 downto -5) ;; boolean_vector(0 to 3)
    integer_vector(0 to 3) ;; time_vector(0 to 3) ;; (idle, run, done)
    ('0', '1', ''', '"', ' ', \signal\, o, outs)
    array (0 to 3) of std_logic_vector(7 downto 0) ;; array (natural) of bit
    array (std.standard.natural range <>) of bit
    array (natural range <>, integer range <>, positive range <>) of bit
    array (natural range 2 to 3, -1 downto -2) of u_float32
    record a, b : std_logic; \c!\ : bit_vector(3 downto 0); end record)vhdl";

// With characters that end a comment or a word.
constexpr const char* kWithBlanks[] = {"bit -- a comment\n", "bit -- a comment\r",
                                       "bit -- a comment\f", "bit -- a comment\v", "bit\xA0"};

constexpr const char* kRefused[] = {
    "record in : bit; end record", "(a__b)", "(a_)", "array (0 to 3, natural range <>) of bit",
    "record end record",
};

// One declaration of a type or subtype.
std::string Declaration(const std::string& text, std::size_t number) {
    const bool is_new = text[0] == '(' || text.starts_with("array") || text.starts_with("record");
    return (is_new ? "type t" : "subtype t") + std::to_string(number) + " is " + text + ";\n";
}

std::string Package(const std::vector<std::string>& texts) {
    std::string package =
        "library ieee;\nuse ieee.std_logic_1164.all;\nuse ieee.numeric_std.all;\n"
        "use ieee.fixed_pkg.all;\nuse ieee.float_pkg.all;\npackage p is\n";
    for (const std::string& text : texts) {
        package += Declaration(text, package.size());
    }
    return package + "end package;\n";
}

bool IsAnalysed(const TemporaryFolder& folder, const std::vector<std::string>& texts) {
    std::ofstream(folder.Path("p.vhd"), std::ios::binary) << Package(texts);
    return folder.Run("ghdl -a --std=08 p.vhd");
}

TEST(VhdlWithGhdl, TakesWhatIsReadAndWritten) {
    if (!HasProgram("ghdl")) {
        GTEST_SKIP() << "no ghdl here";
    }
    std::vector<std::string> accepted(std::begin(kWithBlanks), std::end(kWithBlanks));
    for (const auto& row : Table(kAccepted)) {
        accepted.push_back(row[0]);
    }
    std::vector<std::string> texts;
    for (const std::string& text : accepted) {
        CString type;
        CString written;
        ASSERT_TRUE(TypeFromVhdl(text.c_str(), type)) << text;
        ASSERT_TRUE(TypeToVhdl(type, written)) << type;
        texts.insert(texts.end(), {text, static_cast<const char*>(written)});
    }
    const TemporaryFolder folder;
    EXPECT_TRUE(IsAnalysed(folder, texts)) << folder.Log();
}

TEST(VhdlWithGhdl, RefusesWhatIsRefused) {
    if (!HasProgram("ghdl")) {
        GTEST_SKIP() << "no ghdl here";
    }
    const TemporaryFolder folder;
    for (const char* const text : kRefused) {
        CString type;
        EXPECT_FALSE(TypeFromVhdl(text, type)) << text;
        EXPECT_FALSE(IsAnalysed(folder, {text})) << text;
    }
}

}  // namespace
}  // namespace corv::test
