#include "corv/stremo/streams.h"
#include "corv/util/time_units.h"
#include "tests/stremo/ghw/support.h"
#include "tests/support/other_programs.h"
#include "tests/support/test.h"

namespace corv::test {
namespace {

using Number = GhwFile::Number;

const std::string kLogicText = "e#10#std_ulogicc9 UX01ZWLH-";

// ---- types ----

TEST(GhwTypes, TakeBoundsForWhatHasNone) {
    GhwFile file;
    const Number integer = file.Type(25, "integer");
    const Number natural = file.Subtype(34, "natural", integer, GhwFile::Range(0, 2147483647));
    const Number logic = file.Logic();
    const Number resolved = file.Subtype(34, "std_logic", logic, GhwFile::Positions(0, 8));
    const Number open = file.Array("std_ulogic_vector", resolved, {natural});
    const Number named = file.Subtype(37, "std_logic_vector", open);
    const Number rows = file.Array("rows", named, {natural});
    const Number record = file.Record("pair", {{"a", named}, {"b c", logic}, {"c", rows}});
    const Number alias = file.Subtype(39, "pair2", record);
    const std::string range = GhwFile::Range(1, 0);
    const std::string rows_bounds = GhwFile::Range(4, 5) + range;
    const Number bus = file.Subtype(35, "bus_t", named, range);
    const Number whole = file.Subtype(35, "", rows, rows_bounds);
    const Number made = file.Subtype(38, "", alias, range + rows_bounds);
    file.Signal("bus", bus, {1, 2});
    file.Signal("rows", whole, {3, 4, 5, 6});
    file.Signal("pair", made, {7, 8, 9, 10, 11, 12, 13});
    const std::string element = "e#9#std_logicc9 UX01ZWLH-";
    const std::string vector = "a#28#std_logic_vector(1 downto 0)1 ricd1 0 " + element;
    const std::string row_type = "a#12#rows(4 to 5)1 rict4 5 " + vector;
    std::string expected = "bus " + vector + "\nrows " + row_type + "\nrows(4) " + vector +
                           "\nrows(5) " + vector + "\npair r#5#pair23 a " + vector + " b_c " +
                           kLogicText + " c " + row_type + "\npair.a " + vector + "\npair.c " +
                           row_type + "\npair.c(4) " + vector + "\npair.c(5) " + vector + "\n";
    for (const char* leaf : {"bus(1)", "bus(0)", "rows(4)(1)", "rows(4)(0)", "rows(5)(1)",
                             "rows(5)(0)", "pair.a(1)", "pair.a(0)"}) {
        expected += std::string(leaf) + " " + element + "\n";
    }
    expected += "pair.b c " + kLogicText + "\n";
    for (const char* leaf : {"(4)(1)", "(4)(0)", "(5)(1)", "(5)(0)"}) {
        expected += std::string("pair.c") + leaf + " " + element + "\n";
    }
    EXPECT_EQ(Listing(file.Bytes()), expected);
}

// An array subtype without bounds has none, even one of an array that has.
TEST(GhwTypes, LeaveBoundsOutAgain) {
    GhwFile file;
    const Number integer = file.Type(25, "integer");
    const Number open = file.Array("list", integer, {integer});
    const Number bound = file.Subtype(35, "list2", open, GhwFile::Range(1, 2));
    const Number reopened = file.Subtype(37, "again", bound);
    const Number lists = file.Array("lists", reopened, {integer});
    file.Signal("a", file.Subtype(35, "", lists, GhwFile::Range(0, 0) + GhwFile::Range(9, 9)), {1});
    const std::string text = "i#7#integerrict-2147483648 2147483647";
    const std::string inner = "a#13#again(9 to 9)1 rict9 9 " + text;
    EXPECT_EQ(Listing(file.Bytes()), "a a#13#lists(0 to 0)1 rict0 0 " + inner + "\na(0) " + inner +
                                         "\na(0)(9) " + text + "\n");
}

TEST(GhwTypes, OfScalarsHaveTheirString) {
    GhwFile file;
    const auto real = [&](double left, double right) {
        return "\x1B" + file.Real(left) + file.Real(right);
    };
    const Number letters = file.Enumeration("l", {"'a'", "'A'"});
    const Number mixed = file.Enumeration("m", {"a", "'''", "' '", "", "\\x y\\"});
    const Number names = file.Enumeration("n", {"a", "b"});
    const Number wide = file.Type(26, "wide");
    const Number wide_part =
        file.Subtype(34, "", wide, GhwFile::Range(std::int64_t{1} << 40, 0, 26));
    const Number number = file.Type(27, "number");
    const Number unit_range = file.Subtype(34, "u", number, real(-0.5, 1e300));
    const Number no_numbers = file.Subtype(34, "v", number, real(0.0 / 0.0, 1.0 / 0.0 * 1e308));
    const Number length = file.Physical(28, "len", {{"um", 1}, {"mm", 1000}});
    const Number energy = file.Physical(29, "nrg", {{"j", 1}, {"kj", 1000}});
    int next = 0;
    for (const Number type :
         {letters, mixed, names, wide, wide_part, number, unit_range, no_numbers, length, energy}) {
        file.Signal(std::string(1, static_cast<char>('a' + next)), type, {Number(next + 1)});
        ++next;
    }
    EXPECT_EQ(Listing(file.Bytes()),
              "a e#1#lc2 aA\n"
              "b e#1#ms5 a '' '  ?3 \\x\xA0"
              "y\\ \n"
              "c e#1#ns2 a b \n"
              "d f#4#widerrct-9.22337e+18 9.22337e+18\n"
              "e f#4#widerrcd1.09951e+12 0\n"
              "f f#6#numberrrct-1.79769e+308 1.79769e+308\n"
              "g f#1#urrct-0.5 1e+300\n"
              "h f#1#vrrct0 1.79769e+308\n"
              "i i#3#lenrict-2147483648 2147483647\n"
              "j f#3#nrgrrct-9.22337e+18 9.22337e+18\n");
    const auto reader = OpenGhwBytes(file.Bytes());
    EXPECT_STREQ(reader->GetSignalProperty(9, "Units"), "um = 1, mm = 1000");
    EXPECT_STREQ(reader->GetSignalProperty(10, "Units"), "j = 1, kj = 1000");
    EXPECT_EQ(reader->GetSignalProperty(1, "Units"), nullptr);
}

TEST(GhwTypes, OfNineValuesAreToldByTheirMark) {
    GhwFile file;
    const Number logic = file.Enumeration("l9", {"a", "b", "c", "d", "e", "f", "g", "h", "i"});
    file.well_known = "\3" + GhwFile::Unsigned(logic);
    file.Signal("a", logic, {1});
    EXPECT_EQ(Listing(file.Bytes()), "a e#2#l9c9 UX01ZWLH-\n");
}

// ---- names ----

TEST(GhwNames, StandInTheirScopes) {
    GhwFile file;
    const Number color = file.Enumeration("color", {"red", "'b'"});
    const Number integer = file.Type(25, "integer");
    const Number matrix = file.Array("m", color, {color, integer});
    const Number small =
        file.Subtype(35, "m", matrix, GhwFile::Positions(0, 1) + GhwFile::Range(-1, -1));
    file.Scope(7, "pack");
    file.Signal("p", color, {1});
    file.EndScope();
    file.Scope(6, "top");
    file.Scope(13, "proc");
    file.hierarchy += '\5' + file.Name("gen") + GhwFile::Unsigned(integer) + GhwFile::Signed(-3);
    file.hierarchy += '\5' + file.Name("sub") + GhwFile::Unsigned(color) + '\1';
    file.Signal("s", color, {2});
    file.EndScope();
    file.EndScope();
    file.Scope(4, "cond");
    file.Scope(3, "");
    file.Signal("", small, {3, 4}, 21);
    file.EndScope();
    file.EndScope();
    file.EndScope();
    file.Signal("last", color, {5}, 17);
    const std::string type = "e#5#colors2 red 'b \n";
    EXPECT_EQ(Listing(file.Bytes()), "top.cond.? a#18#m(0 to 1,-1 to -1)2 rict0 1 rict-1 -1 " +
                                         type + "pack.p " + type + "top.gen(-3).sub('b').s " +
                                         type + "top.cond.?(red,-1) " + type +
                                         "top.cond.?('b',-1) " + type + "last " + type);
    EXPECT_EQ(Notes(file.Bytes()).find("scope"), std::string::npos);
}

TEST(GhwNames, AreFrontCodedAtAnyLength) {
    GhwFile file;
    const Number integer = file.Type(25, "integer");
    std::string expected;
    for (const std::size_t length : {31U, 32U, 33U, 1023U, 1024U, 1500U}) {
        for (const char last : {'a', 'b'}) {
            const std::string name = std::string(length, 'x') + last;
            file.Signal(name, integer, {1});
            expected += name + " i#7#integerrict-2147483648 2147483647\n";
        }
    }
    EXPECT_EQ(Listing(file.Bytes()), expected);
}

// ---- values ----

TEST(GhwValues, GoToTheirSignals) {
    for (const bool big_endian : {false, true}) {
        GhwFile file = SomeSignals(big_endian);
        file.Snapshot(0, Start(file));
        // at 0: a becomes 1; at 1000: b glitches and w is set; at 1500: a; at 3000 nothing
        file.Cycles(0, GhwFile::Bit(1, 1) + GhwFile::Step(1'000'000) + GhwFile::Bit(2, 1) + "\3" +
                           GhwFile::Signed(-8) + GhwFile::Step(0) + GhwFile::Bit(1, 0) +
                           GhwFile::Step(500'000) + GhwFile::Bit(1, 1) + "\2" +
                           GhwFile::Signed(1 << 30) + '\1' + file.Real(-1.5) +
                           GhwFile::Step(1'500'000) + GhwFile::End());
        EXPECT_EQ(Changes(file.Bytes()),
                  "a: 0 '1', 1000 '0', 1500 '1'; b: 0 '1'; i: 0 -5, 1500 1073741824; "
                  "r: 0 0.25, 1500 -1.5; w: 0 7, 1000 -8; a2: 0 '1', 1000 '0', 1500 '1'");
        const auto reader = OpenGhwBytes(file.Bytes());
        EXPECT_EQ(SeenLeaves(*reader).leaves[0].latest, 3000);
    }
}

TEST(GhwValues, OfInterestAloneAreHeld) {
    GhwFile file = SomeSignals();
    file.Snapshot(0, Start(file));
    file.Cycles(0, GhwFile::Bit(2, 0) + GhwFile::End());
    const auto reader = OpenGhwBytes(file.Bytes());
    const std::vector<int> handles{4, 9};
    reader->SetInterest(handles);
    EXPECT_EQ(ChangeText(SeenLeaves(*reader).leaves), "i: 0 -5; w: 0 7");
}

TEST(GhwValues, OfOnePicosecondBecomeTheLast) {
    GhwFile file = SomeSignals();
    file.Snapshot(0, Start(file));
    file.Cycles(0, GhwFile::Step(1999) + GhwFile::Bit(1, 1) + GhwFile::Step(1) +
                       GhwFile::Bit(2, 0) + GhwFile::Step(999) + GhwFile::Bit(1, 0) +
                       GhwFile::Bit(1, 1) + GhwFile::End());
    EXPECT_EQ(Changes(file.Bytes()),
              "a: 0 '0', 1 '1', 2 '0'; b: 0 '1'; i: 0 -5; r: 0 0.25; w: 0 7; "
              "a2: 0 '0', 1 '1', 2 '0'");
    EXPECT_TRUE(Says(Notes(file.Bytes()), "it is rounded down (2 times)"));
}

TEST(GhwValues, OfSixtyFourBitsSayWhatTheyLost) {
    GhwFile file;
    const Number wide = file.Type(26, "wide");
    file.Signal("w", wide, {1});
    file.Snapshot(0, GhwFile::Signed(std::int64_t{1} << 53));
    std::string lists;
    const std::int64_t least = std::numeric_limits<std::int64_t>::min();
    for (const std::int64_t value :
         std::vector<std::int64_t>{(std::int64_t{1} << 53) + 1, least, least + 1, -(least + 1)}) {
        lists += '\1' + GhwFile::Signed(value) + GhwFile::Step(1'000'000);
    }
    file.Cycles(0, lists + GhwFile::End());
    const std::string notes = Notes(file.Bytes());
    EXPECT_TRUE(Says(notes, "a value of 64 bits has lost digits as a real number (3 times)"));
}

// ---- times ----

TEST(GhwTimes, AreInTheUnitOfTheTypeTime) {
    struct Row {
        std::int64_t fs, ps, ns;  // the units' values in the file
        int asked;
        const char* changes;
        const char* units;
    };
    for (const Row& row : {
             Row{1, 1000, 1000000, -1, "t: 0 5, 0 6", "fs = 1, ps = 1000, ns = 1000000"},
             Row{0, 1, 1000, -1, "t: 0 5000, 7 6000", "fs = 1, ps = 1000, ns = 1000000"},
             Row{0, 0, 1, -1, "t: 0 5e+06, 7000 6e+06", "fs = 1, ps = 1000, ns = 1000000"},
             Row{0, 0, 1, 3, "t: 0 5e+09, 7000000 6e+09", "fs = 1, ps = 1000, ns = 1000000"},
             Row{1, 2, 3, 0, "t: 0 6", "fs = 1, ps = 1000, ns = 1000000"},
         }) {
        GhwFile file;
        file.Physical(29, "time", {{"tick", 1}, {"min", 60}});  // another one
        const Number time =
            file.Physical(29, "time", {{"fs", row.fs}, {"ps", row.ps}, {"ns", row.ns}});
        const Number range = file.Subtype(34, "time", time, GhwFile::Range(0, 100, 29));
        file.Signal("t", range, {1});
        file.Snapshot(0, "\5");
        file.Cycles(0, GhwFile::Step(7) + GhwFile::Bit(1, 6) + GhwFile::End());
        const auto reader = OpenGhwBytes(file.Bytes(), row.asked);
        const std::string changes = ChangeText(SeenLeaves(*reader).leaves);
        EXPECT_EQ(changes, row.fs == 1 ? "t: 0 6" : row.changes);
        EXPECT_STREQ(reader->GetSignalProperty(1, "Units"), row.units);
    }
}

TEST(GhwTimes, WithoutAUnitAreFemtoseconds) {
    GhwFile file = SomeSignals(false, 0);
    file.Physical(29, "time", {{"fs", 1}});
    file.Snapshot(0, Start(file));
    file.Cycles(0, GhwFile::Step(3'000) + GhwFile::Bit(1, 1) + GhwFile::End());
    EXPECT_EQ(Changes(file.Bytes()).substr(0, 15), "a: 0 '0', 3 '1'");
    EXPECT_TRUE(Says(Notes(file.Bytes()), "nothing tells the unit of times"));
    EXPECT_EQ(Changes(file.Bytes(), UnitIDFromName("sec")).substr(0, 30),
              "a: 0 '0', 3000000000000000 '1'");
}

TEST(GhwTimes, BeyondTheRangeStayAtItsEnd) {
    GhwFile file = SomeSignals();
    file.Snapshot(0, Start(file));
    file.Cycles(0, GhwFile::Step(std::int64_t{1} << 62) + GhwFile::Bit(1, 1) + GhwFile::End());
    EXPECT_EQ(Changes(file.Bytes(), UnitIDFromName("hr")).substr(0, 33),
              "a: 0 '0', 9223372036854775807 '1'");
}

TEST(GhwTimes, AreInTheUnitThatIsGiven) {
    const TemporaryFolder folder;
    GhwFile file = SomeSignals();
    file.Snapshot(0, Start(file));
    file.Cycles(0, GhwFile::Step(3'000) + GhwFile::Bit(1, 1) + GhwFile::End());
    std::ofstream(folder.Path("a.ghw"), std::ios::binary) << file.Bytes();
    std::ofstream(folder.Path("a.vcd")) << "$enddefinitions $end";
    for (const auto& [unit, time] : {std::pair(-1, "3"), {0, "3"}, {2, "3000000"}, {8, "3"}}) {
        const auto reader = OpenGhwRecording(folder.Path("A.ghw").c_str(), unit);
        ASSERT_NE(reader, nullptr) << LastStreamError();
        EXPECT_TRUE(Says(ChangeText(SeenLeaves(*reader).leaves), "a: 0 '0', " + std::string(time)));
    }
    EXPECT_EQ(OpenGhwRecording(folder.Path("a.vcd").c_str(), 0), nullptr);
    EXPECT_EQ(LastStreamError(), folder.Path("a.vcd") + ": it is no GHW file");
    EXPECT_EQ(OpenGhwRecording(folder.Path("b.ghw").c_str(), 0), nullptr);
    EXPECT_EQ(OpenGhwRecording(nullptr, 0), nullptr);
}

}  // namespace
}  // namespace corv::test
