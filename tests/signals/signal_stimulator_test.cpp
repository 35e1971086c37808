#include "tests/signals/signal_support.h"

#include "tests/support/test.h"

namespace corv::test {
namespace {

// Type, strength, formula, clock and hot key, "-" for what is absent.
std::string Stimulator(ISignal& signal) {
    std::string all;
    for (const char* key : {"Stimulator Type", "Stimulator Strength", "Stimulator Formula",
                            "Stimulator Clock", "Hot-Key"}) {
        const char* const value = signal.GetProperty(key);
        all += (all.empty() ? "" : " ; ") + std::string(value ? value : "-");
    }
    return all;
}

// What is set, one after the other, and what the properties then say.
TEST(SignalStimulator, EachKindAfterEachOther) {
    const SignalPtr signal = MakeSignal(kStdLogic);
    struct Row {
        int type;
        int strength;
        const char* text;
        const char* expected;
    };
    const Row rows[] = {
        {0, 2, "0 0,1   10ns", "0 ; 2 ; 0 0, 1 10000 ; - ; -"},
        {3, 16, "clk 50", "3 ; 16 ; 0 0, 1 10000 ; clk 50 ; -"},
        {2, 9, "Ab", "2 ; 16 ; - ; - ; 65"},
        {1, 7, "1 5", "1 ; 7 ; 1 5 ; - ; -"},
        {0, 3, "1 -5", "1 ; 7 ; 1 5 ; - ; -"},
        {2, 9, "\xE4", "2 ; 7 ; - ; - ; -28"},
        {5, 5, "text", "2 ; 7 ; - ; - ; -"},
        {3, -1, "c", "3 ; -1 ; - ; c ; -"},
        {-1, 4, "text", "- ; - ; - ; c ; -"},
        {2, 0, "\x01", "2 ; - ; - ; - ; 1"},
        {0, 4, "", "- ; - ; - ; - ; -"},
        {0, 4, nullptr, "- ; - ; - ; - ; -"},
        {0, -1, "0 0, 1 10 -r 20", "0 ; - ; 0 0, 1 10 -r 20 ; - ; -"},
        {-1, 0, nullptr, "- ; - ; - ; - ; -"},
    };
    for (const Row& row : rows) {
        signal->SetStimulatorInfo(row.type, row.strength, row.text);
        EXPECT_EQ(Stimulator(*signal), row.expected) << row.type;
    }
}

TEST(SignalStimulator, InfoFillsWhatIsAskedFor) {
    const SignalPtr signal = MakeSignal(kStdLogic);
    int type = 5;
    int strength = 5;
    char formula[8] = "?";
    EXPECT_EQ(signal->GetStimulatorInfo(&type, &strength, formula, 1), S_OK);
    EXPECT_EQ(type, -1);
    EXPECT_EQ(strength, -1);
    EXPECT_STREQ(formula, "");

    signal->SetStimulatorInfo(0, 3, "0 0, 1 9");
    formula[0] = '?';
    EXPECT_EQ(signal->GetStimulatorInfo(&type, &strength, formula, 8), E_OUTOFMEMORY);
    EXPECT_EQ(formula[0], '?');
    EXPECT_EQ(type, 0);
    EXPECT_EQ(strength, 3);
    EXPECT_EQ(signal->GetStimulatorInfo(nullptr, nullptr, nullptr, 0), S_OK);
    char longer[9];
    EXPECT_EQ(signal->GetStimulatorInfo(nullptr, nullptr, longer, 9), S_OK);
    EXPECT_STREQ(longer, "0 0, 1 9");
}

TEST(SignalStimulator, HotKeyReachesEveryMember) {
    const SignalPtr bus = MakeSignal("a#4#grid2 rict0 1 rict0 1 e#3#bitc2 01");
    bus->SetHotKey(66);
    for (std::uint32_t i = 0; i < 4; ++i) {
        EXPECT_EQ(MemberAt(*bus, i).GetHotKey(), 66);
        EXPECT_STREQ(MemberAt(*bus, i).GetProperty("Stimulator Type"), "2");
    }
    bus->SetHotKey(0);
    EXPECT_EQ(MemberAt(*bus, 3).GetProperty("Hot-Key"), nullptr);
    EXPECT_EQ(Stimulator(*bus), "2 ; - ; - ; - ; -");
}

// The text that is set may be any property of the signal's own.
TEST(SignalStimulator, TakesItsOwnPropertiesAsText) {
    struct Row {
        int type;
        const char* key;
        const char* expected;
    };
    for (const Row& row :
         {Row{0, "Saved", "0 ; 3 ; 0 0, 1 10 ; - ; -"},
          Row{1, "Stimulator Formula", "1 ; 3 ; 1 5 ; - ; -"},
          Row{0, "Hot-Key", "0 ; 3 ; 65 ; - ; -"}, Row{3, "Hot-Key", "3 ; 3 ; 1 5 ; 65 ; -"},
          Row{2, "Hot-Key", "2 ; 2 ; - ; - ; 54"}}) {
        const SignalPtr signal = MakeSignal(kStdLogic);
        signal->SetStimulatorInfo(0, 2, "1 5");
        signal->SetProperty("Hot-Key", "65");
        signal->SetProperty("Saved", "0 0, 1 10");
        signal->SetStimulatorInfo(row.type, 3, signal->GetProperty(row.key));
        EXPECT_EQ(Stimulator(*signal), row.expected) << row.type << row.key;
    }
}

TEST(SignalStimulator, WithoutMemoryAFormulaIsStoredWholeOrNotAtAll) {
    SignalPtr signal;
    FailEveryAllocation(
        [&] {
            signal = MakeSignal(kStdLogic);
            signal->SetStimulatorInfo(0, 2, "1 5");
        },
        [&] {
            signal->SetStimulatorInfo(1, 9, "0 0, 1 10, 0 20 -r 40");
            return true;
        },
        [&](bool) {
            const std::string now = Stimulator(*signal);
            EXPECT_TRUE(now == "0 ; 2 ; 1 5 ; - ; -" ||
                        now == "1 ; 9 ; 0 0, 1 10, 0 20 -r 40 ; - ; -")
                << now;
        });
}

}  // namespace
}  // namespace corv::test
