#include "host/driven_signal.h"

#include "host/value_type.h"
#include "tests/support/test.h"

namespace corv::host {
namespace {

Trace Recorded(std::vector<std::string> values, const char* before = nullptr) {
    Trace trace;
    if (before != nullptr) {
        trace.before = before;
    }
    for (std::size_t i = 0; i < values.size(); ++i) {
        trace.changes.push_back({100 + static_cast<std::int64_t>(10 * i), values[i]});
    }
    return trace;
}

std::string Text(const Trace& trace) {
    std::string text = trace.before.value_or("none") + ":";
    for (const Change& change : trace.changes) {
        text += " " + std::to_string(change.time) + "=" + change.value;
    }
    return text;
}

std::string Plain(std::string_view characters, BusKind) {
    return std::string(characters);
}

// The type that the values tell, and how they are read back.
TEST(DrivenSignal, TypesOfScalars) {
    struct Row {
        std::vector<std::string> values;
        const char* kind;  // how the type's name begins
        const char* text;
    };
    const Row rows[] = {
        {{"0", "'1'", "x", "0"}, "e#9#std_logic", "none: 100=0 110=1 120=X 130=0"},
        {{"0", "007", "-12"}, "i#7#integer", "none: 100=0 110=7 120=-12"},
        {{"0", "1.50", "1e3"}, "f#4#real", "none: 100=0 110=1.5 120=1000"},
        {{"idle", "run", "idle"}, "e#0#", "none: 100=idle 110=run 120=idle"},
        {{"idle", "Idle"}, "e#0#", "none: 100=idle 110=Idle"},
        {{"\"hello world\"", "(a,b)", "16#FF#", "12345678901"},
         "e#0#",
         "none: 100=\"hello world\" 110=(a,b) 120=16#FF# 130=12345678901"},
        {{}, "e#9#std_logic", "none:"},
    };
    for (const Row& row : rows) {
        const DrivenSignal driven(Recorded(row.values), 100, {});
        EXPECT_EQ(std::string(driven.Signal().GetTypeInfo()).find(row.kind), 0U) << row.text;
        EXPECT_EQ(Text(driven.Read({100, 900}, Plain)), row.text);
    }
}

TEST(DrivenSignal, WindowsAndWhatStandsBeforeThem) {
    const DrivenSignal driven(Recorded({"0", "0", "1"}, "Z"), 100, {});
    EXPECT_EQ(Text(driven.Read({100, 900}, Plain)), "Z: 100=0 110=0 120=1");
    EXPECT_EQ(Text(driven.Read({105, 119}, Plain)), "0: 110=0");
    EXPECT_EQ(driven.Signal().GetWave()->GetFirstTime(), 99);
}

TEST(DrivenSignal, GivenTypes) {
    const DrivenSignal driven(Recorded({"5", "16#A#"}), 0, {},
                              "i#1#n"
                              "rict0 15");
    EXPECT_EQ(Text(driven.Read({0, 900}, Plain)), "none: 100=5 110=10");
    try {
        const DrivenSignal wrong(Recorded({"5", "16"}), 0, {},
                                 "i#1#n"
                                 "rict0 15");
        FAIL() << "16 was taken";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "`16`, at 110ps, is not a value of the type");
    }
    EXPECT_THROW(DrivenSignal(Recorded({}), 0, {}, "no type"), std::runtime_error);
}

TEST(DrivenSignal, Vectors) {
    const DrivenSignal bits(Recorded({"0101", "0111", "0111"}, "UUUU"), 100, {4, false});
    EXPECT_STREQ(bits.Signal().GetTypeInfo(),
                 "a#28#std_logic_vector(3 downto 0)1 ricd3 0 e#9#std_logicc9 UX01ZWLH-");
    EXPECT_EQ(Text(bits.Read({100, 900}, Plain)), "UUUU: 100=0101 110=0111 120=0111");
    ISignal* bit = nullptr;
    ASSERT_EQ(bits.Signal().GetSubSignals()->GetAt(2, &bit), S_OK);
    EXPECT_EQ(bit->GetWave()->GetEventCount(), 4U);  // no event where only others change

    const std::string words = "red\x1fgreen";
    const DrivenSignal colours(Recorded({words, "blue\x1fgreen"}), 100, {2, true});
    EXPECT_EQ(Text(colours.Read({100, 900}, Plain)), "none: 100=(red,green) 110=(blue,green)");

    const DrivenSignal digits(Recorded({"A5", "5A"}), 100, {2, false});
    EXPECT_EQ(Text(digits.Read({100, 900}, Plain)), "none: 100=A5 110=5A");
}

// Wider than a dimension of a signal may be.
TEST(DrivenSignal, WideVectors) {
    test::Random random(3);
    for (const int width : {256, 257, 512, 1000}) {
        std::vector<std::string> values;
        for (int i = 0; i < 5; ++i) {
            std::string value;
            for (int bit = 0; bit < width; ++bit) {
                value += "01XZ"[random.Below(4)];
            }
            values.push_back(value);
        }
        const Trace recorded = Recorded(values);
        const DrivenSignal driven(recorded, 0, {width, false});
        EXPECT_EQ(Text(driven.Read({0, 900}, Plain)), Text(recorded)) << width;
    }
}

}  // namespace
}  // namespace corv::host
