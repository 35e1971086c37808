#include "corv/stremo/streams.h"
#include "stremo/block_builder.h"
#include "stremo/vcd/output.h"
#include "stremo/vcd/writer.h"
#include "tests/stremo/recording_model.h"
#include "tests/stremo/vcd/support.h"
#include "tests/support/other_programs.h"
#include "tests/support/test.h"

namespace corv::test {
namespace {

std::string Written(stremo::IEventsStreamRead& reader, const VcdOptions& options = {}) {
    MemoryFiles files;
    EXPECT_TRUE(vcd::WriteVcd(reader, files, "out.vcd", options)) << LastStreamError();
    const MemoryFiles::Content& content = files["out.vcd"];
    return {content.begin(), content.end()};
}

std::string Rewritten(const std::string& text, const VcdOptions& options = {}) {
    const auto reader = OpenVcdText(text);
    return reader != nullptr ? Written(*reader, options) : LastStreamError();
}

// The lines behind the declarations, and those alone.
std::string Changes(const std::string& text) {
    constexpr std::string_view kEnd = "$enddefinitions $end\n";
    return text.substr(text.find(kEnd) + kEnd.size());
}
std::string Declared(const std::string& text) {
    const std::size_t begin = text.find("ps $end\n") + 8;
    return text.substr(begin, text.find("$enddefinitions") - begin);
}

const std::string kSome =
    "$timescale 1 ps $end $scope module top $end $var reg 1 ! a $end $var reg 4 \" v[0:3] $end "
    "$var integer 32 # i $end $var real 64 $ r $end $var string 0 % s [1:4] $end "
    "$var event 1 & e $end $scope module u $end $var reg 1 ! b $end $upscope $end $upscope $end "
    "$enddefinitions $end ";
const std::string kSomeChanges =
    "#0 0! b01 \" r0.1 $ 1& #5 1! b1101 # sa\\040\\\"\\351 % #7 u! bUXHL \" 1& 1& r-inf $ "
    "#9 s % h! b11111111111111111111111111111111 # #11 ";

// Names with a backslash stay what they are, also when they have been written and read again.
TEST(VcdWriter, KeepsEscapedNames) {
    const std::string text = R"(
        $timescale 1ps $end $scope module tb $end $var reg 1 ! \esc!id $end $var reg 1 " \a\b $end
        $var reg 1 # \mysig\x\ $end $scope module \u_1/u.2 $end $scope module \my\x\ $end
        $var reg 2 $ \d[0]\.q [1:0] $end $upscope $end $upscope $end $enddefinitions $end
        #0 0! 0" 0# b01 $ )";
    const auto reader = OpenVcdText(text);
    ASSERT_NE(reader, nullptr);
    const std::vector<SeenSignal> seen = SeenSignals(*reader).signals;
    EXPECT_EQ(ChangeText(seen), R"(tb\\esc!id: 0 0; tb\\a\b: 0 0; tb\\mysig\x\: 0 0; )"
                                R"(tb\\u_1/u.2 \\my\\x\\\d[0]\.q: 0 01)");
    EXPECT_EQ(SeenSignals(*OpenVcdText(Written(*reader))).signals, seen);
}

TEST(VcdWriter, WritesTheFormWhichMostToolsRead) {
    EXPECT_EQ(Rewritten(kSome + kSomeChanges), R"($version
  corv
$end
$timescale 1ps $end
$scope module top $end
$var wire 1 ! a $end
$var wire 4 " v [0:3] $end
$var integer 32 # i $end
$var real 64 $ r $end
$var string 0 % s [1:4] $end
$var event 1 & e $end
$scope module u $end
$var wire 1 ! b $end
$upscope $end
$upscope $end
$enddefinitions $end
#0
$dumpvars
0!
b0001 "
r0.1 $
$end
1&
#5
1!
b1101 #
sa\040"\351 %
#7
1&
u!
bUXHL "
r-inf $
1&
#9
h!
b11111111111111111111111111111111 #
s\040 %
#11
)");
}

TEST(VcdWriter, WritesFourStates) {
    VcdOptions options;
    options.four_state = true;
    std::string changes = "#0 bUX01ZWLH- ! #1 u\" #2 w\" #3 l\" #4 h\" #5 -\" #6 0\" #7 z\" #8 ";
    const std::string text = Rewritten(
        "$timescale 1ps $end $var reg 9 ! v $end "
        "$var reg 1 \" a $end $enddefinitions $end " +
            changes,
        options);
    EXPECT_EQ(Changes(text),
              "#0\n$dumpvars\nbxx01zz01x !\n$end\n#1\nx\"\n#2\nz\"\n#3\n0\"\n#4\n1\"\n#5\nx\"\n"
              "#6\n0\"\n#7\nz\"\n#8\n");
}

TEST(VcdWriter, CutsAPartOut) {
    VcdOptions options;
    options.start = 6;
    options.end = 8;
    options.takes = [](const char* name, int) {
        const char last = name[std::char_traits<char>::length(name) - 1];
        return last == 'a' || last == 'v' || last == 'e' || last == 'i';
    };
    EXPECT_EQ(Changes(Rewritten(kSome + kSomeChanges, options)),
              "#6\n$dumpvars\n1!\nb0001 \"\nb1101 #\n$end\n#7\n1$\nu!\nbUXHL \"\n1$\n#8\n");
}

TEST(VcdWriter, DividesNamesIntoScopes) {
    const auto rows = Table(R"(
        a         | a
        a\b\c     | a,b,c
        a\\x y\   | a,\x y\
        a\\x\\y\\c | a,\x\\y\\c
        a\\esc!id | a,\esc!id
        a\\e!\b   | a,\e!\b
        a\\e! \b  | a,\e!,b
        \ext\     | \ext\
        \ext\\b   | \ext\\b
        a\gen(0)\[1] | a,gen(0),[1]
    )");
    for (const auto& row : rows) {
        std::string parts;
        for (const std::string& part : vcd::SplitName(row[0], '\\')) {
            parts += (parts.empty() ? "" : ",") + part;
        }
        EXPECT_EQ(parts, row[1]) << row[0];
    }
    EXPECT_EQ(vcd::SplitName("a.b\\.c", '.'), (std::vector<std::string>{"a", "b\\", "c"}));
    const std::string text =
        "$timescale 1ps $end $scope module t $end $var reg 1 ! \\a b\\ $end $enddefinitions $end ";
    VcdOptions raw;
    raw.raw_names = true;
    EXPECT_TRUE(Says(Rewritten(text), " ! \\a_b\\ $end"));
    EXPECT_TRUE(Says(Rewritten(text, raw), " ! \\a b\\ $end"));
}

// ---- there and back ----

void ExpectTheSame(const std::string& text) {
    VcdOptions raw;
    raw.raw_names = true;
    const auto first = OpenVcdText(text);
    ASSERT_NE(first, nullptr);
    SeenSignals before(*first);
    for (SeenSignal& signal : before.signals) {
        if (signal.type.starts_with("signed")) {
            signal.type.replace(0, 6, "std_logic_vector");
        }
    }
    const std::string written = Written(*first, raw);
    const auto second = OpenVcdText(written);
    ASSERT_NE(second, nullptr) << LastStreamError();
    const SeenSignals after(*second);
    EXPECT_EQ(after.signals, before.signals);
    EXPECT_EQ(after.events, before.events);
    EXPECT_EQ(second->NoteCount(), 0);
    EXPECT_EQ(Rewritten(written, raw), written);
}

TEST(VcdWriter, IsReadBackAsItself) {
    for (const char* const name :
         {"tb_composite", "tb_delta", "tb_hier", "tb_scalars", "tb_scalars.4state", "tb_verilog"}) {
        SCOPED_TRACE(name);
        ExpectTheSame(FileText(SampleName(std::string(name) + ".vcd")));
    }
    ExpectTheSame(kSome + kSomeChanges);
}

// ---- recordings of other kinds ----

// Signals, in the order of their tree, and events.
class SignalList {
public:
    void Add(const char* name, const char* type, int handle, int members = -1) {
        recording::Signal signal;
        signal.name = name;
        signal.type = type;
        signal.handle = handle;
        signal.composite = members >= 0;
        signal.member_count = members >= 0 ? static_cast<std::uint32_t>(members) : 0;
        signals_.Add(signal);
    }
    std::unique_ptr<recording::SignalReader> Finish(const std::vector<ModelEvent>& events) {
        signals_.Finish();
        auto blocks = std::make_unique<recording::MemoryBlocks>();
        recording::BlockBuilder builder(signals_, *blocks, recording::EventOrder::kAsWritten);
        for (const ModelEvent& event : events) {
            builder.SetTime(event.time);
            builder.Set(signals_.FindLeaf(event.handle), event.value);
        }
        builder.Flush();
        return recording::MakeReader(
            std::make_unique<MadeRecording>(std::move(signals_), std::move(blocks)));
    }

private:
    recording::SignalTable signals_;
};

constexpr const char* kLogic = "e#9#std_logicc9 UX01ZWLH-";
constexpr const char* kBit = "e#3#bitc2 01";
constexpr const char* kState = "e#5#states3 idle 'A don't\\ ";
constexpr const char* kBoolean = "e#7#booleans2 false true ";
constexpr const char* kInteger = "i#7#integerrict-2147483648 2147483647";

std::unique_ptr<recording::SignalReader> MadeReader() {
    SignalList made;
    made.Add("t\\bus", "r#3#bus3 x i#1#irict0 1 y i#1#irict0 1 z i#1#irict0 1", -1, 3);
    made.Add(".valid", kBoolean, 0);
    made.Add(".state", kState, 1);
    made.Add(".mem", "a#1#m1 rict0 1 e#3#bitc2 01", -1, 2);
    made.Add("(0)", "a#10#bit_vector1 ricd1 0 e#3#bitc2 01", -1, 2);
    made.Add("(1)", kBit, 2);
    made.Add("(0)", kBit, 3);
    made.Add("(1)", "a#10#bit_vector1 ricd1 0 e#3#bitc2 01", -1, 2);
    made.Add("(1)", kBit, 4);
    made.Add("(0)", kBit, 5);
    made.Add("t\\grid", "a#1#g2 rict0 1 rict2 2 i#7#integerrict0 1", -1, 2);
    made.Add("(0,2)", kInteger, 6);
    made.Add("(1,2)", kInteger, 7);
    made.Add("top", kLogic, 3);  // the same net as t\bus.mem(0)(0)
    made.Add("untyped", "", 8);
    return made.Finish({{4, 0, 0},
                        {4, 1, 0},
                        {4, 2, 1},
                        {4, 2, 0},
                        {4, 3, 1},
                        {6, 1, 1},
                        {6, 6, 9},
                        {6, 7, 4294967295},
                        {8, 1, 2},
                        {8, 4, 1},
                        {8, 5, 0}});
}

TEST(VcdWriter, WritesRecordsArraysAndEnumerations) {
    const auto reader = MadeReader();
    const std::string text = Written(*reader);
    EXPECT_EQ(Declared(text), R"($scope module t $end
$scope vhdl_record bus $end
$var wire 1 ! valid $end
$var string 0 " state $end
$var wire 2 # mem[0] [1:0] $end
$var wire 2 $ mem[1] [1:0] $end
$upscope $end
$var integer 32 % grid[0][2] $end
$var integer 32 & grid[1][2] $end
$upscope $end
$var wire 1 ' top $end
)");
    EXPECT_EQ(Changes(text),
              "#0\n$dumpvars\n$end\n#4\n0!\nsidle \"\nb01 #\nx'\n#6\ns'A' \"\nb1001 %\n"
              "b11111111111111111111111111111111 &\n#8\nsdon't\\\\ \"\nb10 $\n");
}

// ---- failures ----

TEST(VcdWriter, TellsWhyItFails) {
    const auto reader = OpenVcdText(kSome + kSomeChanges);
    MemoryFiles files;
    for (std::size_t room = 0; room < 700; room += 60) {
        files.LimitRoom(room);
        const bool written = vcd::WriteVcd(*reader, files, "full.vcd", {});
        EXPECT_EQ(written, room > files["full.vcd"].size());
        if (!written) {
            EXPECT_STREQ(LastStreamError(), "full.vcd: the disk is full");
        }
    }
    EXPECT_FALSE(WriteVcd(*reader, nullptr));
    EXPECT_FALSE(WriteVcd(*reader, "/no/such/folder/x.vcd"));
    EXPECT_NE(*LastStreamError(), '\0');
    VcdOptions throwing;
    throwing.takes = [](const char*, int) -> bool { throw std::bad_alloc(); };
    EXPECT_FALSE(WriteVcd(*reader, "/no/such/folder/x.vcd", throwing));
}

// ---- other programs ----

// Their reals have 16 digits, so the sample without reals is used.
TEST(VcdWriter, SurvivesOtherTools) {
    if (!HasProgram("vcd2fst") || !HasProgram("fst2vcd")) {
        GTEST_SKIP() << "vcd2fst and fst2vcd are not installed";
    }
    const TemporaryFolder folder;
    for (const char* const name : {"tb_composite.vcd", "tb_hier.vcd"}) {
        const auto reader = OpenVcdText(FileText(SampleName(name)));
        const std::vector<SeenSignal> before = SeenSignals(*reader).signals;
        VcdOptions raw;
        raw.raw_names = true;
        ASSERT_TRUE(WriteVcd(*reader, folder.Path("t.vcd").c_str(), raw));
        ASSERT_TRUE(folder.Run("vcd2fst t.vcd t.fst && fst2vcd t.fst > back.vcd"));
        const auto back = OpenVcdText(FileText(folder.Path("back.vcd")));
        ASSERT_NE(back, nullptr);
        EXPECT_EQ(SeenSignals(*back).signals, before) << name;
    }
}

}  // namespace
}  // namespace corv::test
