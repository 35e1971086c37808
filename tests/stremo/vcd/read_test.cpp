#include <charconv>

#include "corv/stremo/streams.h"
#include "stremo/vcd/declarations.h"
#include "stremo/vcd/time.h"
#include "stremo/vcd/values.h"
#include "tests/stremo/vcd/support.h"
#include "tests/support/test.h"

namespace corv::test {
namespace {

const std::string kPicoseconds = "$timescale 1 ps $end\n";

std::vector<SeenSignal> Seen(const std::string& text) {
    const auto reader = OpenVcdText(text);
    return reader != nullptr ? SeenSignals(*reader).signals : std::vector<SeenSignal>();
}

TEST(VcdDeclarations, BecomeSignals) {
    const auto rows = Table(R"(
        $var reg 1 ! a $end                      | a std_logic
        $var wire 4 ! q [3:0] $end               | q std_logic_vector(3 downto 0)
        $var reg 4 ! up[0:3] $end                | up std_logic_vector(0 to 3)
        $var reg 8 ! d $end                      | d std_logic_vector(7 downto 0)
        $var reg 1 # one[3:3] $end               | one std_logic_vector(3 downto 3)
        $var reg 3 ! vt[-3:-5] $end              | vt std_logic_vector(-3 downto -5)
        $var logic 0 ! nul[0:1] $end             | nul std_logic_vector(0 downto 1)
        $var wire 8 ! mem[0] [7:0] $end          | mem[0] std_logic_vector(7 downto 0)
        $var logic 8 ! hist[2][7:0] $end         | hist[2] std_logic_vector(7 downto 0)
        $var logic 8 ! odd[2][5:0] $end          | odd[2][5:0] std_logic_vector(7 downto 0)
        $var integer 32 ! ints[-1] $end          | ints[-1] integer
        $var integer 32 ! i [31:0] $end          | i integer
        $var integer 64 ! t [63:0] $end          | t std_logic_vector(63 downto 0)
        $var wire 1 ! bit [5] $end               | bit[5] std_logic
        $var real 1 ! r $end                     | r real
        $var event 1 ! e $end                    | e event
        $var string 0 ! s [1:5] $end             | s string(1 to 5)
        $var string 0 ! s $end                   | s string(1 to 1)
        $var sparray 2 ! m $end                  | m std_logic_vector(1 downto 0)
        $var port [3:0] <0 p $end                | p std_logic_vector(3 downto 0)
        $var reg 1 # \My Sig\\x\ $end            | .My Sig..x. std_logic
        $var reg 2 # \My Sig\[1:0] $end          | .My Sig. std_logic_vector(1 downto 0)
        $var wire 1 # \esc!id  $end              | .esc!id std_logic
        $var wire 2 # \a\b [1:0] $end            | .a.b std_logic_vector(1 downto 0)
        $var reg 1 $end x $end                   | _
        $var reg $end                            | _
        $var reg ? ! x $end                      | _
        $var reg 99999999999999999999 ! x $end   | _
        $var reg 70000 ! x $end                  | _
    )");
    for (const auto& row : rows) {
        EXPECT_EQ(Listing(Seen(row[0] + " $enddefinitions $end")), row[1]) << row[0];
    }
}

TEST(VcdDeclarations, StandInScopes) {
    const auto rows = Table(
        "$scope module t $end $scope begin gen[0] $end $var reg 1 ! a $end $upscope $end "
        "$var reg 1 ! b $end $upscope $end $var reg 1 ! c $end"
        "| t.gen[0].a std_logic; t.b std_logic; c std_logic\n"
        "$upscope $end $scope module $end $var reg 1 ! a $end | a std_logic\n"
        "$scope vhdl_record \\a b\\ $end $var reg 1 ! x $end $upscope $end| .a b..x std_logic\n"
        "$attrbegin misc 02 STD_LOGIC 1030 $end $var logic 1 ! a $end $attrend $end| a std_logic");
    for (const auto& row : rows) {
        EXPECT_EQ(Listing(Seen(row[0] + " $enddefinitions $end")), row[1]) << row[0];
    }
}

// The variables of the rows below.
const std::string kSome =
    kPicoseconds +
    "$var reg 1 ! a $end $var reg 4 \" v[3:0] $end $var integer 32 # i $end $var real 64 $ r $end "
    "$var string 0 % s $end $var event 1 & e $end $var reg 1 #1 h $end $var reg 40 bb w $end "
    "$var port 2 <0 p $end $var integer 4 longcode k $end $enddefinitions $end\n";

TEST(VcdChanges, AreRead) {
    const auto rows = Table(R"(
        #0 0! #5 1! #7 x!                         | a: 0 0, 5 1, 7 X
        1! #5 1! #6 0! 0! #8                      | a: 0 1, 6 0
        #1 u! #2 W! #3 l! #4 H! #5 -! #6 ?!       | a: 1 U, 2 W, 3 L, 4 H, 5 -, 6 X
        #0 b1 " #1 bx0 " #2 bz " #3 B1010 "       | v: 0 0001, 1 XXX0, 2 ZZZZ, 3 1010
        #0 b11010 " #1 b-ZH " #2 1" #3 x"         | v: 0 1010, 1 --ZH, 2 0001, 3 XXXX
        #0 b101 # #1 b11111111111111111111111111111000 # #2 bx # | i: 0 00000000000000000000000000000101, 1 11111111111111111111111111111000, 2 XXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXX
        #0 bx # #1 b101 # #2 b11111111111111111111111111111000 # | i: 1 5, 2 -8
        #0 b101 longcode #1 b01 longcode #2 x0 $comment x $end #3 bx0 longcode | k: 0 0101, 1 0001, 3 XXX0
        #0 b101 longcode #1 b1000 longcode        | k: 0 5, 1 -8
        #0 r1.5 $ #1 R-2e3 $ #2 rNaN $ #3 r+0.5 $ #4 r1e-999 $ | r: 0 1.5, 1 -2000, 2 NaN, 3 0.5, 4 0
        #0 r1.797693134862316e+308 $              | r: 0 1.7976931348623157e+308
        #0 sa\040\\\n\x41 % #1 s % #2 sab %       | s: 0 a \@A, 1, 2 ab
        #0 1& #5 1& 1& $dumpall 1& $end #6 1&     | e: 0 trigger, 5 trigger, 5 trigger, 6 trigger
        #0 1#1 #5 0#1                             | h: 0 1, 5 0
        #1 b1 bb #2 bz0 bb                        | w: 1 0000000000000000000000000000000000000001, 2 ZZZZZZZZZZZZZZZZZZZZZZZZZZZZZZZZZZZZZZZ0
        $dumpvars 0! $end #1 1! $comment 0! $end  | a: 0 0, 1 1
        #0 pDU 6 6 <0 #1 pFT 0 0 <0               | p: 0 01, 1 ZZ
        #9 1! #5 0! #8 1! #10 0!                  | a: 9 1, 10 0
        #0 b101 " b1 #100 0!                      | a: 100 0; v: 0 0101
        #0 1! zz 1?? $foo %% @ #1x 0! #           | a: 0 0
        #0 b2 " b " r1 ! s1 ! b1 $ 1% b1 & #1 0!  | a: 1 0; v: 0 XXXX; e: 0 trigger
        #0 $dumpvars 1! #1 1& 0!                  | a: 0 1, 1 0; e: 1 trigger
        #99999999999999999999 1!                  | a: 9223372036854775807 1
        #0 1! $comment lost$#7 0! #8              | a: 0 1, 7 0
    )");
    for (const auto& row : rows) {
        std::string text = kSome + row[0] + "\n";
        for (std::size_t at; (at = text.find("$#")) != std::string::npos;) {
            text.replace(at, 1, "\n");
        }
        std::string changes = ChangeText(Seen(text));
        for (char& c : changes) {
            c = c == '\n' ? '@' : c;
        }
        changes.erase(changes.find_last_not_of(' ') + 1);
        while (changes.find(" , ") != std::string::npos ||
               changes.find("  ") != std::string::npos) {
            const std::size_t blank = std::min(changes.find(" , "), changes.find("  "));
            changes.erase(blank, 1);
        }
        EXPECT_EQ(changes, row[1]) << row[0];
    }
}

// Numbers that no double holds are 0 or the largest one, wherever their digits stand.
TEST(VcdChanges, KeepRealsInRange) {
    const std::string zeros(400, '0');
    const auto rows =
        Table("0." + zeros + "1 | 0 ;; 0." + zeros + "1e401 | 1 ;; 0.001e-330 | 0 ;; " + "-1" +
              zeros + " | -1.7976931348623157e+308 ;; 1" + zeros + "e-400 | 1 ;; " + zeros +
              "1e-999999999999999999999 | 0 ;; " +
              "1e99999999999999999999 | 1.7976931348623157e+308 ;; inf | inf ;; " +
              "-Infinity | -inf ;; NaN | nan ;; 0e999 | 0 ;; -1" + zeros + ".1e-800 | -0");
    for (const auto& row : rows) {
        double number = -1;
        bool passes = false;
        ASSERT_TRUE(vcd::ReadReal(row[0], number, passes)) << row[0];
        EXPECT_EQ(passes, std::abs(number) == std::numeric_limits<double>::max()) << row[0];
        char text[32];
        EXPECT_EQ(std::string(text, std::to_chars(text, text + sizeof text, number).ptr), row[1])
            << row[0];
    }
}

TEST(VcdChanges, AreToldWithWhatWasRepaired) {
    const auto rows = Table(R"(
        #0 1x9 0x9                | line 3, column 4: the code `x9` is not declared; its values are left out (2 times)
        #9 1! #5 0!               | line 3, column 7: the time goes back to `#5`
        #0 b11010 "               | line 3, column 4: the value `11010` has more digits
        #0 r1 !                   | line 3, column 4: the value `1` does not fit the type
        #0 r1e999 $               | the value `1e999` exceeds the range of real numbers
        #0 $dumpoff x! $end #7 $dumpon 0! $end #8 | line 3, column 4: nothing is recorded from 0ps to 7ps
        #0 $dumpoff x! $end       | line 3, column 4: nothing is recorded from 0ps on
        #0 $dumpall 0!            | line 3, column 4: a block of values has no $end
        @                         | line 3, column 1: `@` makes no sense here
        #0 0! b1                  | line 3, column 7: the file ends in the middle of a word
    )");
    for (const auto& row : rows) {
        const auto reader = OpenVcdText(kSome + row[0] + "\n");
        ASSERT_NE(reader, nullptr);
        reader->EventCount();
        EXPECT_TRUE(Says(NoteText(*reader), row[1])) << row[0];
    }
    const auto zeros = OpenVcdText(kSome + "#0 0!\n" + std::string(4096, '\0') + "#9 1!\n");
    zeros->EventCount();
    EXPECT_EQ(
        NoteText(*zeros).rfind("line 4, column 1: 4096 zero bytes; what they stand for is lost", 0),
        0U);
    const auto clean = OpenVcdText(kSome + "#0 1! bx # r1 $ #1 0!\n#2\n");
    clean->EventCount();
    EXPECT_EQ(NoteText(*clean), "");
}

TEST(VcdDeclarations, AreRepaired) {
    const std::string text =
        "$scope module t\n$var reg 1 ! a\n$var reg 1 \" b $end\n#0\n1!\n1\"\n$enddefinitions\n";
    const auto reader = OpenVcdText(text);
    ASSERT_NE(reader, nullptr);
    EXPECT_EQ(ChangeText(SeenSignals(*reader).signals), "t\\a: 0 1; t\\b: 0 1");
    EXPECT_TRUE(Says(NoteText(*reader), "line 1, column 1: there is no timescale"));
    EXPECT_TRUE(Says(NoteText(*reader), "line 1, column 1: $end is missing (2 times)"));
    EXPECT_TRUE(Says(NoteText(*reader), "line 4, column 1: $enddefinitions is missing"));
}

TEST(VcdCodes, OfOneNetShareAHandle) {
    const auto reader = OpenVcdText(
        "$var reg 4 ! a[3:0] $end $var wire 4 ! b[0:3] $end $var reg 1 \" c $end "
        "$var reg 1 \" d $end $var reg 2 ! low $end $enddefinitions $end #0 b1 ! 1\"\n");
    ASSERT_NE(reader, nullptr);
    EXPECT_EQ(ChangeText(SeenSignals(*reader).signals),
              "a: 0 0001; b: 0 0001; c: 0 1; d: 0 1; low: 0 01");
    EXPECT_EQ(reader->GetSubSignalHandle(reader->GetSignalHandle(0), 2),
              reader->GetSubSignalHandle(reader->GetSignalHandle(1), 2));
    EXPECT_EQ(reader->GetSignalHandle(2), reader->GetSignalHandle(3));
    EXPECT_TRUE(Says(NoteText(*reader), "`!` shares its code"));
}

TEST(VcdTimeScale, IsWholeNumbers) {
    const auto rows = Table(R"(
        1ps | 7 | 7 ;; 1 fs | 1999 | 1 ;; 10ps | 5 | 50 ;; 100 us | 3 | 300000000 ;; 1 sec | 2 | 2000000000000
        1s | 9223372 | 9223372000000000000 ;; 1s | 9223373 | 9223372036854775807
        6666ps | 3 | 19998 ;; 6666 fs | 3 | 19 ;; 0.001fs | 1000000 | 1 ;; 1.5ns | 2 | 3000
        10 fs | 1001000013001001 | 10010000130010 ;; 1fs | 18446744073709551615 | 18446744073709551
        1 | 1 | none ;; ns | 1 | none ;; 0 ns | 1 | none ;; 1 parsec | 1 | none ;; 1.2.3ns | 1 | none
        123456789 ns | 1 | none ;; 1000000s | 1 | none ;; 1000000000000 fs | 1 | 1000000000
    )");
    for (const auto& row : rows) {
        const auto scale = vcd::TimeScale::Read(row[0]);
        const std::uint64_t time = std::stoull(row[1]);
        EXPECT_EQ(scale ? std::to_string(scale->ToPicoseconds(time)) : "none", row[2]) << row[0];
    }
}

// ---- recordings of simulators ----

class VcdSample : public testing::TestWithParam<const char*> {};

TEST_P(VcdSample, HoldsWhatIsExpected) {
    const auto reader = OpenVcdText(FileText(SampleName(std::string(GetParam()) + ".vcd")));
    ASSERT_NE(reader, nullptr) << LastStreamError();
    const std::vector<SeenSignal> seen = SeenSignals(*reader).signals;
    std::istringstream expected(FileText(SampleName(std::string(GetParam()) + ".expected")));
    std::size_t signals = 0;
    for (std::string line; std::getline(expected, line); ++signals) {
        ASSERT_LT(signals, seen.size());
        const SeenSignal& signal = seen[signals];
        const std::vector<std::string> fields = Split(line, '\t');
        EXPECT_EQ(signal.name, fields[0]);
        std::string left = "-";
        if (const std::size_t open = signal.type.find('('); open != std::string::npos) {
            std::istringstream range(signal.type.substr(open + 1));
            std::string to;
            std::string right;
            range >> left >> to >> right;
            left = "[" + left + ":" + right.substr(0, right.size() - 1) + "]";
        }
        EXPECT_EQ(left, fields[2]) << line;
        std::vector<std::string> changes;
        for (const auto& [time, value] : signal.changes) {
            changes.push_back(std::to_string(time) + " " + value);
        }
        EXPECT_EQ(changes.size(), fields.size() - 3) << line;
        for (std::size_t i = 0; i < changes.size() && i + 3 < fields.size(); ++i) {
            const bool real = fields[1] == "real" && fields[i + 3].find("NaN") == std::string::npos;
            if (real) {
                EXPECT_EQ(std::stod(changes[i].substr(changes[i].find(' '))),
                          std::stod(fields[i + 3].substr(fields[i + 3].find(' '))))
                    << line;
            } else {
                EXPECT_EQ(changes[i], fields[i + 3]) << line;
            }
        }
    }
    EXPECT_EQ(signals, seen.size());
}

INSTANTIATE_TEST_SUITE_P(Simulators, VcdSample,
                         testing::Values("tb_composite", "tb_delta", "tb_hier",
                                         "tb_hier_cut_in_header", "tb_scalars", "tb_scalars.4state",
                                         "tb_verilog"));

// ---- damage ----

const std::string kSomeChanges =
    "#0\n$dumpvars\n0! bx \"\n1&\n$end\nr1.5 $\n#5\n1!\nb10x1 \"\nsab %\n1&\n"
    "#12\nr-2 $\nb111 #\n1#1\nb1 bb\nb1 longcode\n#120\nbz bb\n0!\nb0 #\n#121\n";

// All that could be missing is told, also where only words that are whole are left.
TEST(VcdDamage, IsToldOfDeclarationsThatAreCut) {
    const std::size_t end = kSome.find("$enddefinitions $end") + 20;
    for (std::size_t length = 0; length < end; ++length) {
        if (const auto reader = OpenVcdText(kSome.substr(0, length))) {
            EXPECT_TRUE(Says(NoteText(*reader), "the file ends among its declarations")) << length;
        }
    }
    EXPECT_EQ(NoteText(*OpenVcdText(kSome.substr(0, end))), "");
}

// What is read of a file that was cut is the beginning of what the whole file holds.
TEST(VcdDamage, FilesOpenWhereverTheyAreCut) {
    const std::string text = kSome + kSomeChanges;
    const std::vector<SeenSignal> whole = Seen(text);
    std::size_t opened = 0;
    std::size_t latest = 0;
    for (std::size_t length = 0; length <= text.size(); ++length) {
        const auto reader = OpenVcdText(text.substr(0, length));
        if (reader == nullptr) {
            EXPECT_NE(*LastStreamError(), '\0');
            continue;
        }
        ++opened;
        const std::vector<SeenSignal> seen = SeenSignals(*reader).signals;
        ASSERT_LE(seen.size(), whole.size());
        std::size_t changes = 0;
        for (std::size_t i = 0; i < seen.size(); ++i) {
            ASSERT_EQ(seen[i].name, whole[i].name) << length;
            ASSERT_LE(seen[i].changes.size(), whole[i].changes.size()) << length;
            // the length of a text is that of the longest value so far
            ASSERT_TRUE(seen[i].name == "s" ||
                        std::equal(seen[i].changes.begin(), seen[i].changes.end(),
                                   whole[i].changes.begin()))
                << length << testing::PrintToString(seen[i]);
            changes += seen[i].changes.size();
        }
        ASSERT_GE(changes, latest) << length;
        latest = changes;
    }
    EXPECT_GT(opened, text.size() / 2);
    EXPECT_EQ(latest, 15U);
}

TEST(VcdDamage, HugeDeclarationsTakeLittleMemory) {
    std::string text = "$timescale 1ps $end ";
    for (int i = 0; i < 400; ++i) {
        text += "$var reg 65536 c" + std::to_string(i) + " n $end ";
    }
    const std::string nested = "$scope module " + std::string(50, 'n') + " $end ";
    for (int i = 0; i < 400; ++i) {
        text += nested + "$var reg 1 c n $end ";
    }
    const HeldContent content(text + "$enddefinitions $end");
    const platform::Bytes bytes = content.bytes();
    recording::Notes notes;
    recording::SignalTable texts;
    const vcd::Declarations declarations =
        vcd::ReadDeclarations(content, bytes.data() + bytes.size(), notes, texts);
    EXPECT_GT(declarations.names.size(), 90U);
    EXPECT_LT(declarations.names.size(), 130U);
    for (const std::string& note : vcd::Sentences(notes, content)) {
        EXPECT_TRUE(note.find("is too wide") != std::string::npos ||
                    note.find("is too long") != std::string::npos)
            << note;
    }
}

TEST(VcdDamage, TextsWithoutDeclarationsAreRefused) {
    for (const char* const text : {"", "\n", "$", "$date\n", "$comment x $end"}) {
        EXPECT_EQ(OpenVcdText(text), nullptr) << text;
        EXPECT_STREQ(LastStreamError(), "text.vcd: no signal is declared before the file ends");
    }
}

TEST(VcdDamage, MemoryMayRunOut) {
    const std::string text = FileText(SampleName("tb_verilog.vcd"));
    const auto content = [&] { return std::make_unique<HeldContent>(text); };
    const auto open = [&]() -> std::unique_ptr<recording::BlockStore> {
        try {
            const auto recording = recording::OpenVcd("t", content());
            return recording != nullptr ? recording->OpenBlocks({}) : nullptr;
        } catch (const std::bad_alloc&) {
            return nullptr;
        }
    };
    const std::uint64_t events = open()->EventCount();
    const auto check = [&](const auto& blocks) {
        EXPECT_TRUE(blocks == nullptr || blocks->EventCount() == events);
    };
    EXPECT_GT(FailEveryAllocation(open, check), 50);
}

// ---- random files ----

struct RandomVariable {
    std::string code;
    unsigned width;
    std::string value;
};

std::string RandomCode(std::mt19937& random, std::size_t number) {
    // codes end in their number, so that no two are equal
    std::string code;
    for (auto i = random() % 10; i > 0; --i) {
        code += static_cast<char>('!' + random() % 94);
    }
    return code + "k" + std::to_string(number);
}

// The reader's digits, codes and blanks at every length and alignment; all signals, and a few.
TEST(VcdRandom, FilesAreReadAsTheyWereMade) {
    constexpr std::string_view kDigits = "01010101xzUWLH-";
    constexpr std::string_view kBlanks = " \n\t\r\n";
    for (unsigned seed = 0; seed < 15; ++seed) {
        std::mt19937 random(seed);
        std::vector<RandomVariable> variables(1 + random() % 12);
        std::vector<SeenSignal> expected;
        std::string text = kPicoseconds;
        for (std::size_t i = 0; i < variables.size(); ++i) {
            RandomVariable& variable = variables[i];
            variable = {RandomCode(random, i), static_cast<unsigned>(1 + random() % 80), {}};
            const std::string width = std::to_string(variable.width);
            text +=
                "$var reg " + width + " " + variable.code + " n" + std::to_string(i) + " $end\n";
            expected.push_back(
                {"n" + std::to_string(i),
                 variable.width == 1
                     ? "std_logic"
                     : "std_logic_vector(" + std::to_string(variable.width - 1) + " downto 0)",
                 {}});
        }
        text += "$enddefinitions $end\n";
        std::int64_t time = 0;
        for (unsigned change = 0; change < 300; ++change) {
            if (random() % 3 == 0) {
                time += 1 + static_cast<std::int64_t>(random() % 1000);
                text += "#" + std::to_string(time);
                text += kBlanks[random() % kBlanks.size()];
            }
            const std::size_t number = random() % variables.size();
            RandomVariable& variable = variables[number];
            std::string value(variable.width, '0');
            const std::size_t letters = random() % 2 == 0 ? 2 : kDigits.size();
            for (char& c : value) {
                c = kDigits[random() % letters];
            }
            text += variable.width == 1 && random() % 2 == 0 ? value : "b" + value + " ";
            text += variable.code + kBlanks[random() % kBlanks.size()];
            for (char& c : value) {
                c = static_cast<char>(std::toupper(c));
            }
            auto& changes = expected[number].changes;
            if (!changes.empty() && changes.back().first == time) {
                changes.pop_back();
            }
            if (changes.empty() || changes.back().second != value) {
                changes.emplace_back(time, value);
            }
        }
        const auto reader = OpenVcdText(text);
        ASSERT_NE(reader, nullptr);
        ASSERT_EQ(SeenSignals(*reader).signals, expected) << "seed " << seed;

        const std::size_t wanted = random() % variables.size();
        const auto few = OpenVcdText(text);
        std::vector<int> handles;
        const int handle = few->GetSignalHandle(static_cast<int>(wanted));
        for (unsigned i = 0; i < variables[wanted].width; ++i) {
            handles.push_back(variables[wanted].width == 1
                                  ? handle
                                  : few->GetSubSignalHandle(handle, static_cast<int>(i)));
        }
        few->SetInterest(handles);
        for (std::size_t i = 0; i < expected.size(); ++i) {
            expected[i].changes.resize(i == wanted ? expected[i].changes.size() : 0);
        }
        ASSERT_EQ(SeenSignals(*few).signals, expected) << "seed " << seed;
    }
}

}  // namespace
}  // namespace corv::test
