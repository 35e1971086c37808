#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "corv/stremo/ghw_options.h"
#include "corv/util/time_units.h"
#include "tests/stremo/ghw_support.h"
#include "tests/support/failing_alloc.h"
#include "tests/support/other_programs.h"

namespace corv::test {
namespace {

using Number = GhwFile::Number;

std::string Changes(const std::string& bytes, int time_unit = -1) {
    const auto reader = OpenGhwBytes(bytes, time_unit);
    return reader != nullptr ? ChangeText(SeenLeaves(*reader).leaves) : LastStreamError();
}
std::string Notes(const std::string& bytes) {
    const auto reader = OpenGhwBytes(bytes);
    if (reader == nullptr) {
        return LastStreamError();
    }
    SeenLeaves seen(*reader);
    return NoteText(*reader);
}

// "path type" of all signals, composites first.
std::string Listing(const std::string& bytes) {
    const auto reader = OpenGhwBytes(bytes);
    if (reader == nullptr) {
        return LastStreamError();
    }
    const SeenLeaves seen(*reader);
    std::string text;
    for (const std::string& composite : seen.composites) {
        text += composite + "\n";
    }
    for (const SeenLeaf& leaf : seen.leaves) {
        text += leaf.path + " " + leaf.type + "\n";
    }
    return text;
}

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
              "b e#1#ms5 a '' '  ?3 \\x_y\\ \n"
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

// Two bits, an integer, a real and an integer of 64 bits, as numbers 1, 2, 4, 5 and 9.
GhwFile SomeSignals(bool big_endian = false, int minor = 1) {
    GhwFile file(big_endian, minor);
    const Number bit = file.Type(22, "bit", "\2" + file.Name("'0'") + file.Name("'1'"));
    const Number integer = file.Type(25, "integer");
    const Number real = file.Type(27, "real");
    const Number wide = file.Type(26, "wide");
    file.Signal("a", bit, {1});
    file.Signal("b", bit, {2});
    file.Signal("i", integer, {4});
    file.Signal("r", real, {5});
    file.Signal("w", wide, {9});
    file.Signal("a2", bit, {1}, 17);
    return file;
}
std::string Start(const GhwFile& file) {
    return std::string("\0\1", 2) + GhwFile::Signed(-5) + file.Real(0.25) + GhwFile::Signed(7);
}

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
    EXPECT_NE(Notes(file.Bytes()).find("it is rounded down (2 times)"), std::string::npos);
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
    EXPECT_NE(notes.find("a value of 64 bits has lost digits as a real number (3 times)"),
              std::string::npos)
        << notes;
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
    EXPECT_NE(Notes(file.Bytes()).find("nothing tells the unit of times"), std::string::npos);
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
        const std::unique_ptr<stremo::IEventsStreamRead> reader(
            OpenGhwRecording(folder.Path("A.ghw").c_str(), unit));
        ASSERT_NE(reader, nullptr) << LastStreamError();
        EXPECT_NE(ChangeText(SeenLeaves(*reader).leaves).find("a: 0 '0', " + std::string(time)),
                  std::string::npos);
    }
    EXPECT_EQ(OpenGhwRecording(folder.Path("a.vcd").c_str(), 0), nullptr);
    EXPECT_EQ(LastStreamError(), folder.Path("a.vcd") + ": it is no GHW file");
    EXPECT_EQ(OpenGhwRecording(folder.Path("b.ghw").c_str(), 0), nullptr);
    EXPECT_EQ(OpenGhwRecording(nullptr, 0), nullptr);
}

// ---- damage ----

TEST(GhwDamage, IsToldWithItsPlace) {
    GhwFile whole = SomeSignals();
    whole.Snapshot(0, Start(whole));
    const std::string read = "a: 0 '1'";
    struct Row {
        std::string lists;
        const char* note;
    };
    for (const Row& row : {
             Row{"\6", "a value is of a signal that is not there; the last complete time is 0 fs"},
             Row{GhwFile::Step(-2), "the time goes back; the last complete time is 1000000 fs"},
             Row{GhwFile::Step(INT64_MAX), "the time goes back"},
             Row{std::string("\0\x7F"
                             "ECX\0",
                             6),
                 "the changes end without their mark"},
             Row{GhwFile::Bit(1, 2) + GhwFile::End(),
                 "a value is none of its type; it is left out"},
             Row{"\3" + GhwFile::Signed(std::int64_t{1} << 31) + GhwFile::End(),
                 "a value is none of its type"},
             Row{std::string(10, '\xFF') + "\1", "a number has more than 64 bits"},
         }) {
        GhwFile file = whole;
        file.Cycles(0, GhwFile::Bit(1, 1) + GhwFile::Step(1'000'000) + row.lists);
        EXPECT_NE(Notes(file.Bytes()).find(row.note), std::string::npos) << row.note << "\n"
                                                                         << Notes(file.Bytes());
        EXPECT_EQ(Changes(file.Bytes()).substr(0, read.size()), read) << row.note;
    }
}

TEST(GhwDamage, OfATypeIsToldWithItsNumber) {
    GhwFile file;
    const Number bit = file.Enumeration("bit", {"'0'", "'1'"});
    file.Type(30, "unknown");
    file.Signal("a", bit, {1});
    file.Snapshot(0, std::string(1, '\1'));
    EXPECT_EQ(Changes(file.Bytes()), "a: 0 '1'");
    EXPECT_NE(Notes(file.Bytes()).find(": type 2: a type is of an unknown kind; this section"),
              std::string::npos)
        << Notes(file.Bytes());
    file.Signal("b", 2, {2});
    EXPECT_NE(Notes(file.Bytes()).find("the hierarchy: the type of a signal has no size"),
              std::string::npos)
        << Notes(file.Bytes());
}

TEST(GhwDamage, OfInnerBoundsEndsTheTypes) {
    GhwFile file;
    const Number bit = file.Enumeration("bit", {"'0'", "'1'"});
    const Number grid = file.Array("grid", bit, {bit, bit});
    const Number grids = file.Array("grids", grid, {bit});
    file.Subtype(35, "", grids, GhwFile::Positions(0, 1) + "\x63");
    file.Signal("a", bit, {1});
    EXPECT_EQ(Listing(file.Bytes()), "a e#3#bitc2 01\n");
    EXPECT_NE(Notes(file.Bytes()).find(": type 4: a range is of an unknown kind"),
              std::string::npos)
        << Notes(file.Bytes());
}

TEST(GhwDamage, OfNumbersLeavesTheSignals) {
    // a number above all, with a gap where it belongs
    GhwFile file = SomeSignals();
    file.SetMost(8);
    file.Snapshot(0, Start(file));
    EXPECT_EQ(Changes(file.Bytes()), "");
    EXPECT_NE(Notes(file.Bytes()).find("the values can't be told apart"), std::string::npos);

    // one net of two kinds
    GhwFile twice = SomeSignals();
    const Number real = twice.Type(27, "other");
    twice.Signal("no", real, {4});
    twice.Snapshot(0, Start(twice));
    EXPECT_EQ(Changes(twice.Bytes()), "a: 0 '0'; b: 0 '1'; i: 0 -5; r: 0 0.25; w: 0 7; a2: 0 '0'");
    EXPECT_NE(Notes(twice.Bytes()).find("has the number of one of another type"),
              std::string::npos);
}

TEST(GhwDamage, OfOneMarkIsRepaired) {
    const std::string sample = GhwSample("tb_hier.ghw");
    const std::string expected = Changes(sample);
    for (const char* const mark : {"STR", "TYP", "WKT", "HIE", "CYC"}) {
        std::string bytes = sample;
        bytes[bytes.find(std::string(mark) + '\0')] = '?';
        EXPECT_EQ(Changes(bytes), expected) << mark;
        EXPECT_NE(Notes(bytes).find("the mark of a section is damaged"), std::string::npos) << mark;
    }
}

// Few bytes with every kind of type, scope and value.
std::string Everything() {
    GhwFile file;
    const Number logic = file.Logic();
    const Number integer = file.Type(25, "integer");
    const Number natural = file.Subtype(34, "natural", integer, GhwFile::Range(0, 99));
    const Number op = file.Enumeration("op", {"rd", "'w'", "\\x y\\"});
    const Number time = file.Physical(29, "time", {{"fs", 0}, {"ps", 1}, {"ns", 1000}});
    const Number ohms = file.Physical(28, "res", {{"ohm", 1}});
    const Number real = file.Type(27, "real");
    const Number open = file.Array("bits", logic, {natural});
    const Number bits = file.Subtype(37, "b", open);
    const Number record = file.Record("rec", {{"a", bits}, {"o", op}, {"t", time}});
    const Number records = file.Array("recs", record, {op, integer});
    const Number made = file.Subtype(
        35, "", records, GhwFile::Positions(0, 1) + GhwFile::Range(-1, -1) + GhwFile::Range(1, 0));
    file.well_known = "\3" + GhwFile::Unsigned(logic);
    file.Scope(7, "p");
    file.EndScope();
    file.Scope(6, "top");
    file.Scope(13, "run");
    file.Signal("c", logic, {1});
    file.Signal("m", made, {2, 3, 4, 5, 6, 7, 8, 9});
    file.hierarchy += '\5' + file.Name("gen") + GhwFile::Unsigned(integer) + GhwFile::Signed(-3);
    file.Signal("c", logic, {1}, 17);
    file.Signal("i", integer, {10});
    file.EndScope();
    file.Signal("w", ohms, {12});
    file.Signal("r", real, {14});
    file.EndScope();
    file.Snapshot(
        0, std::string("\2\0\1\2\5\0\3\1\6", 9) + GhwFile::Signed(-5) + "\7" + file.Real(0.25));
    file.Cycles(0, GhwFile::Bit(1, 3) + GhwFile::Step(5) + GhwFile::Bit(2, 4) + '\2' + '\1' + '\1' +
                       GhwFile::Signed(-300) + GhwFile::Step(2000) + GhwFile::Bit(1, 2) + '\x0A' +
                       GhwFile::Signed(999) + '\1' + file.Real(-1.5) + GhwFile::End());
    return file.Bytes();
}

// Every value that a file tells before it is cut, and no other.
TEST(GhwDamage, OfACutFileLeavesWhatStandsBefore) {
    for (const std::string& sample : {Everything(), GhwSample("tb_delta.ghw")}) {
        const auto whole = OpenGhwBytes(sample);
        const std::vector<SeenLeaf> leaves = SeenLeaves(*whole).leaves;
        std::size_t most = 0;
        const std::size_t snapshot_end = sample.find(std::string("ESN", 4));
        const std::size_t directory = sample.find(std::string("DIR", 4));
        for (std::size_t length = 0; length < directory; ++length) {
            const auto reader = OpenGhwBytes(sample.substr(0, length));
            if (reader == nullptr) {
                EXPECT_NE(std::string(LastStreamError()), "") << length;
                continue;
            }
            const std::vector<SeenLeaf> cut = SeenLeaves(*reader).leaves;
            ASSERT_LE(cut.size(), leaves.size());
            std::size_t changes = 0;
            for (std::size_t i = 0; i < cut.size(); ++i) {
                ASSERT_EQ(cut[i].path, leaves[i].path);
                ASSERT_LE(cut[i].changes.size(), leaves[i].changes.size() + 1) << length;
                changes += cut[i].changes.size();
            }
            EXPECT_GE(changes, most) << length;
            EXPECT_TRUE(length < snapshot_end || changes >= leaves.size()) << length;
            most = changes;
            EXPECT_NE(NoteText(*reader), "") << length;
        }
        EXPECT_GT(most, leaves.size());
    }
}

// Whatever the bytes are: no crash, a sentence when nothing can be read, and values of their types.
void ReadDamaged(const std::string& bytes) {
    const auto reader = OpenGhwBytes(bytes);
    if (reader == nullptr) {
        EXPECT_NE(std::string(LastStreamError()), "");
        return;
    }
    for (const SeenLeaf& leaf : SeenLeaves(*reader).leaves) {
        for (const auto& [time, value] : leaf.changes) {
            ASSERT_TRUE(!value.empty() || leaf.type[0] == 'f') << leaf.path << leaf.type;
        }
    }
}

TEST(GhwDamage, OfAnyByteIsSurvived) {
    const std::string whole = Everything();
    EXPECT_EQ(Notes(whole), "");
    EXPECT_EQ(Changes(whole),
              "top.c: 0 '1', 2005 '0'; top.m(rd,-1).a(1): 0 'U', 5 'Z'; "
              "top.m(rd,-1).a(0): 0 'X'; top.m(rd,-1).o: 0 \\x_y\\, 5 'w'; "
              "top.m(rd,-1).t: 0 5000, 5 -3e+05; top.m('w',-1).a(1): 0 'U'; "
              "top.m('w',-1).a(0): 0 '1'; top.m('w',-1).o: 0 'w'; top.m('w',-1).t: 0 6000; "
              "top.gen(-3).c: 0 '1', 2005 '0'; top.gen(-3).i: 0 -5; top.w: 0 7, 2005 999; "
              "top.r: 0 0.25, 2005 -1.5");
    for (std::size_t i = 0; i < whole.size(); ++i) {
        for (const int flip : {0x01, 0x02, 0x04, 0x08, 0x10, 0x20, 0x40, 0x80, 0x7F, 0xFF}) {
            std::string bytes = whole;
            bytes[i] = static_cast<char>(bytes[i] ^ flip);
            ReadDamaged(bytes);
        }
    }
}

// ---- bombs ----

TEST(GhwLimits, HoldForAFewBytesThatStandForMuch) {
    GhwFile file;
    const Number integer = file.Type(25, "integer");
    const Number bit = file.Enumeration("bit", {"'0'", "'1'"});
    const Number bits = file.Array("bits", bit, {integer});
    const Number all = file.Subtype(35, "", bits, GhwFile::Range(INT32_MIN, INT32_MAX));
    const Number empty = file.Record("empty", {});
    const Number empties = file.Array("empties", empty, {integer});
    const Number many = file.Subtype(35, "", empties, GhwFile::Range(1, 1'000'000'000));
    const Number some = file.Subtype(35, "", empties, GhwFile::Range(1, 60'000));
    const Number far = file.Subtype(
        35, "", bits, GhwFile::Range(std::int64_t{1} << 40, (std::int64_t{1} << 40) + 1, 26));
    Number twice = bit;
    for (int i = 0; i < 62; ++i) {
        twice = file.Record("t", {{"a", twice}, {"b", twice}});
    }
    Number hollow = empty;
    for (int i = 0; i < 40; ++i) {
        hollow = file.Record("h", {{"a", hollow}, {"b", hollow}});
    }
    file.Signal("far", far, {1, 2});
    file.Signal("many", many, {});
    file.Signal("some", some, {});
    file.Signal("again", some, {});
    file.Signal("hollow", hollow, {});
    file.Signal("i", integer, {3});
    file.Signal("all", all, {4});
    file.Signal("twice", twice, {4});
    const auto reader = OpenGhwBytes(file.Bytes());
    ASSERT_NE(reader, nullptr) << LastStreamError();
    EXPECT_EQ(reader->GetSignalCount(), 2);
    const std::string notes = NoteText(*reader);
    for (const char* const part :
         {"the type of a signal can't be described", "a signal has too many members",
          "there are too many signals", "the file ends before the parts of a signal"}) {
        EXPECT_NE(notes.find(part), std::string::npos) << part << "\n" << notes;
    }
}

TEST(GhwLimits, OfNesting) {
    for (const int levels : {64, 65}) {
        GhwFile file;
        Number type = file.Type(25, "integer");
        for (int i = 1; i < levels; ++i) {
            type = file.Record("r", {{"f", type}});
        }
        file.Signal("deep", type, {1});
        const auto reader = OpenGhwBytes(file.Bytes());
        EXPECT_EQ(reader != nullptr, levels == 64) << LastStreamError();
    }
}

TEST(GhwAllocation, FailuresLoseNothing) {
    const std::string sample = GhwSample("tb_hier.ghw");
    const auto count = [&]() -> std::uint64_t {
        try {
            const auto recording = recording::OpenGhw("a", std::make_unique<HeldContent>(sample));
            const auto blocks = recording != nullptr ? recording->OpenBlocks({}) : nullptr;
            return blocks != nullptr ? blocks->EventCount() : 0;
        } catch (const std::bad_alloc&) {
            return 0;
        }
    };
    const std::uint64_t all = count();
    EXPECT_GT(all, 0U);
    // sorting does with less memory when there is none
    FailEveryAllocation([] {}, count,
                        [&](std::uint64_t events) { EXPECT_TRUE(events == 0 || events == all); });
}

}  // namespace
}  // namespace corv::test
