// GHW files that are cut or damaged, or stand for more than they are.

#include "tests/stremo/ghw/support.h"

#include "tests/support/test.h"

namespace corv::test {
namespace {

using Number = GhwFile::Number;

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
             Row{GhwFile::Bit(1, 2) + GhwFile::End(), "a value is not of its type; it is left out"},
             Row{"\3" + GhwFile::Signed(std::int64_t{1} << 31) + GhwFile::End(),
                 "a value is not of its type"},
             Row{std::string(10, '\xFF') + "\1", "a number has more than 64 bits"},
         }) {
        GhwFile file = whole;
        file.Cycles(0, GhwFile::Bit(1, 1) + GhwFile::Step(1'000'000) + row.lists);
        EXPECT_TRUE(Says(Notes(file.Bytes()), row.note));
        EXPECT_EQ(Changes(file.Bytes()).substr(0, read.size()), read) << row.note;
    }
}

// Of two nets that change at one time, one is cut off: neither has changed.
TEST(GhwDamage, LeavesACycleOutThatIsNotWhole) {
    GhwFile file = SomeSignals();
    file.Snapshot(0, Start(file));
    const std::string before = Changes(file.Bytes());
    file.Cycles(1'000'000, GhwFile::Bit(1, 1) + GhwFile::Bit(1, 0) + GhwFile::End());
    const std::string whole = file.Bytes();
    const std::size_t end = whole.find(std::string("ECY\0", 4));
    for (const std::size_t missing : {2U, 3U, 4U, 5U}) {
        const auto cut = OpenGhwBytes(whole.substr(0, end - missing));
        const SeenLeaves seen(*cut);
        EXPECT_EQ(ChangeText(seen.leaves), before) << missing;
        EXPECT_EQ(seen.leaves[0].latest, 0) << missing;
        EXPECT_TRUE(Says(NoteText(*cut), "the last complete time is 0 fs"));
    }
}

TEST(GhwDamage, OfATypeIsToldWithItsNumber) {
    GhwFile file;
    const Number bit = file.Enumeration("bit", {"'0'", "'1'"});
    file.Type(30, "unknown");
    file.Signal("a", bit, {1});
    file.Snapshot(0, std::string(1, '\1'));
    EXPECT_EQ(Changes(file.Bytes()), "a: 0 '1'");
    EXPECT_TRUE(Says(Notes(file.Bytes()), ": type 2: a type is of an unknown kind; this section"));
    file.Signal("b", 2, {2});
    EXPECT_TRUE(Says(Notes(file.Bytes()), "the hierarchy: the type of a signal has no size"));
}

TEST(GhwDamage, OfInnerBoundsEndsTheTypes) {
    GhwFile file;
    const Number bit = file.Enumeration("bit", {"'0'", "'1'"});
    const Number grid = file.Array("grid", bit, {bit, bit});
    const Number grids = file.Array("grids", grid, {bit});
    file.Subtype(35, "", grids, GhwFile::Positions(0, 1) + "\x63");
    file.Signal("a", bit, {1});
    EXPECT_EQ(Listing(file.Bytes()), "a e#3#bitc2 01\n");
    EXPECT_TRUE(Says(Notes(file.Bytes()), ": type 4: a range is of an unknown kind"));
}

TEST(GhwDamage, OfASnapshotLeavesTheCycles) {
    GhwFile file;
    const Number bit = file.Enumeration("bit", {"'0'", "'1'"});
    file.Signal("a", bit, {1});
    GhwFile damaged = file;
    damaged.Snapshot(0, "\1\1");
    damaged.Cycles(0, GhwFile::Step(5000) + GhwFile::Bit(1, 1) + GhwFile::End());
    EXPECT_EQ(Changes(damaged.Bytes()), "a: 5 '1'");
    // behind other values
    file.Snapshot(0, "\1");
    file.Cycles(0, GhwFile::Step(1000) + GhwFile::End());
    file.Snapshot(2000, "\1\1");
    file.Cycles(5000, GhwFile::Bit(1, 1) + GhwFile::End());
    EXPECT_EQ(Changes(file.Bytes()), "a: 0 '1'");
    EXPECT_TRUE(Says(Notes(file.Bytes()), "the last complete time is 1000 fs"));
}

TEST(GhwDamage, OfNumbersLeavesTheSignals) {
    // a number above all, with a gap where it belongs
    GhwFile file = SomeSignals();
    file.SetMost(8);
    file.Snapshot(0, Start(file));
    EXPECT_EQ(Changes(file.Bytes()), "");
    EXPECT_TRUE(Says(Notes(file.Bytes()), "the values cannot be told apart"));

    // one net of two kinds
    GhwFile twice = SomeSignals();
    const Number real = twice.Type(27, "other");
    twice.Signal("no", real, {4});
    twice.Snapshot(0, Start(twice));
    EXPECT_EQ(Changes(twice.Bytes()), "a: 0 '0'; b: 0 '1'; i: 0 -5; r: 0 0.25; w: 0 7; a2: 0 '0'");
    EXPECT_TRUE(Says(Notes(twice.Bytes()), "has the number of one of another type"));
}

TEST(GhwDamage, OfOneMarkIsRepaired) {
    const std::string sample = GhwSample("tb_hier.ghw");
    const std::string expected = Changes(sample);
    for (const char* const mark : {"STR", "TYP", "WKT", "HIE", "CYC"}) {
        std::string bytes = sample;
        bytes[bytes.find(std::string(mark) + '\0')] = '?';
        EXPECT_EQ(Changes(bytes), expected) << mark;
        EXPECT_TRUE(Says(Notes(bytes), "the mark of a section is damaged")) << mark;
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
        const std::vector<SeenSignal> leaves = SeenLeaves(*whole).leaves;
        std::size_t most = 0;
        const std::size_t snapshot_end = sample.find(std::string("ESN\0", 4));
        for (std::size_t length = 0; length < sample.size(); ++length) {
            const auto reader = OpenGhwBytes(sample.substr(0, length));
            if (reader == nullptr) {
                EXPECT_NE(std::string(LastStreamError()), "") << length;
                continue;
            }
            const std::vector<SeenSignal> cut = SeenLeaves(*reader).leaves;
            ASSERT_LE(cut.size(), leaves.size());
            std::size_t changes = 0;
            for (std::size_t i = 0; i < cut.size(); ++i) {
                ASSERT_EQ(cut[i].name, leaves[i].name);
                // at the last time further lists may be missing
                const auto& was = leaves[i].changes;
                std::size_t count = cut[i].changes.size();
                ASSERT_LE(count, was.size() + 1) << length;
                ASSERT_TRUE(count == 0 || cut[i].changes.back().first <= cut[i].latest) << length;
                count -= count > 0 && cut[i].changes.back().first == cut[i].latest ? 1U : 0U;
                ASSERT_LE(count, was.size()) << length;
                ASSERT_TRUE(std::equal(was.begin(),
                                       was.begin() + static_cast<std::ptrdiff_t>(count),
                                       cut[i].changes.begin()))
                    << length;
                ASSERT_TRUE(count == was.size() || was[count].first >= cut[i].latest) << length;
                changes += cut[i].changes.size();
            }
            EXPECT_TRUE(length < snapshot_end + 4 || changes >= leaves.size()) << length;
            most = std::max(most, changes);
            EXPECT_NE(NoteText(*reader), "") << length;
        }
        EXPECT_GT(most, leaves.size());
    }
}

TEST(GhwValues, OfEveryKindAreRead) {
    const std::string whole = Everything();
    EXPECT_EQ(Notes(whole), "");
    EXPECT_EQ(Changes(whole),
              "top.c: 0 '1', 2005 '0'; top.m(rd,-1).a(1): 0 'U', 5 'Z'; "
              "top.m(rd,-1).a(0): 0 'X'; top.m(rd,-1).o: 0 \\x\xA0"
              "y\\, 5 'w'; "
              "top.m(rd,-1).t: 0 5000, 5 -3e+05; top.m('w',-1).a(1): 0 'U'; "
              "top.m('w',-1).a(0): 0 '1'; top.m('w',-1).o: 0 'w'; top.m('w',-1).t: 0 6000; "
              "top.gen(-3).c: 0 '1', 2005 '0'; top.gen(-3).i: 0 -5; top.w: 0 7, 2005 999; "
              "top.r: 0 0.25, 2005 -1.5");
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
         {"the type of a signal cannot be described", "a signal has too many members",
          "there are too many signals", "the file ends before the parts of a signal"}) {
        EXPECT_TRUE(Says(notes, part));
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
