#include "corv/signals/signal.h"

#include "corv/frame/com_ptr.h"
#include "tests/signals/signal_support.h"
#include "tests/support/test.h"

namespace corv::test {
namespace {

TEST(Signal, FreshOneAnswersWithDefaults) {
    const SignalPtr signal = MakeSignal("");
    EXPECT_EQ(signal->GetName(), nullptr);
    EXPECT_EQ(signal->GetTypeInfo(), nullptr);
    EXPECT_EQ(signal->GetStimulator(), nullptr);
    EXPECT_EQ(signal->GetHandle(), -1);
    EXPECT_EQ(signal->GetMode(), 6);
    EXPECT_EQ(signal->GetColor(), 0);
    EXPECT_EQ(signal->GetDisplayMode(), 0);
    EXPECT_EQ(signal->GetDisplayRadix(), 1);
    EXPECT_EQ(signal->GetHotKey(), 0);
    EXPECT_EQ(signal->GetMaxTime(), 0);
    EXPECT_EQ(signal->GetWaveValueSize(), 0U);
    EXPECT_EQ(signal->GetStdLogicClass(), 0);
    EXPECT_FALSE(signal->GetSpareFlag());
    EXPECT_TRUE(signal->OwnsWave());
    EXPECT_EQ(signal->Reserved2(5), 0);
    EXPECT_EQ(signal->GetParent(), nullptr);
    EXPECT_EQ(signal->GetSubSignals(), nullptr);
    EXPECT_EQ(signal->GetWave(), nullptr);
    EXPECT_EQ(signal->EnumSubSignals(nullptr), E_FAIL);
    EXPECT_EQ(signal->EnumEvents(nullptr), E_FAIL);
    EXPECT_EQ(signal->GetBusEventIterator(nullptr), E_FAIL);
    EXPECT_EQ(signal->SetWave(nullptr), E_FAIL);
    EXPECT_EQ(signal->GetValueText(), nullptr);
}

TEST(Signal, HandleAndItsProperty) {
    const SignalPtr signal = MakeSignal("");
    signal->SetHandle(5);
    EXPECT_STREQ(signal->GetProperty("HANDLE"), "5");
    signal->SetHandle(6);
    EXPECT_STREQ(signal->GetProperty("Handle"), "6");
    signal->SetHandle(5);
    signal->SetProperty("handle", "12");
    EXPECT_EQ(signal->GetHandle(), 5);
    EXPECT_STREQ(signal->GetProperty("Handle"), "12");
    signal->SetProperty("Handle", "13");
    EXPECT_EQ(signal->GetHandle(), 13);
    signal->SetHandle(-1);
    EXPECT_EQ(signal->GetProperty("Handle"), nullptr);
    signal->SetProperty(nullptr, nullptr);
    EXPECT_STREQ(signal->GetProperty(""), "");
}

TEST(Signal, NamesOfAnyLength) {
    const SignalPtr signal = MakeSignal("");
    for (const std::size_t length : {0U, 11U, 12U, 13U, 500U, 3U}) {
        const std::string name(length, 'n');
        signal->SetName(name.c_str());
        EXPECT_EQ(signal->GetName(), name);
        EXPECT_EQ(signal->GetProperty("NAME"), name);
    }
    signal->SetName("a name of its own");
    for (const std::size_t cut : {2U, 5U, 1U}) {
        const std::string rest = signal->GetName() + cut;
        signal->SetName(signal->GetName() + cut);
        EXPECT_EQ(signal->GetName(), rest);
    }
    const FailingAlloc failing(1);
    signal->SetName("much too long for no memory");
    EXPECT_STREQ(signal->GetName(), "f its own");
    signal->SetName(nullptr);
    EXPECT_STREQ(signal->GetName(), "");
}

TEST(Signal, WavesAreMadeWhenAskedFor) {
    const SignalPtr signal = MakeSignal(kReal);
    frame::ComPtr<IWaveEventEnumerator> events;
    {
        const FailingAlloc failing(1, true);
        EXPECT_EQ(signal->GetWaveValueSize(), 8U);
        EXPECT_EQ(signal->GetWave(), nullptr);
        EXPECT_EQ(signal->EnumEvents(events.Out()), E_OUTOFMEMORY);
        EXPECT_EQ(signal->SetWave(nullptr), S_OK);
    }
    ISignalWave* const wave = signal->GetWave();
    ASSERT_NE(wave, nullptr);
    EXPECT_EQ(signal->GetWave(), wave);
    EXPECT_TRUE(signal->OwnsWave());
    EXPECT_EQ(signal->EnumEvents(events.Out()), S_OK);
    EXPECT_EQ(signal->SetTypeInfo("f#4#longrrct-1 1"), S_OK);
    EXPECT_EQ(signal->GetWave(), wave);
    EXPECT_EQ(signal->SetTypeInfo(kBit), S_OK);
    EXPECT_EQ(signal->GetWaveValueSize(), 4U);
    EXPECT_EQ(signal->SetTypeInfo(kTwoBits), S_OK);
    EXPECT_EQ(signal->GetWaveValueSize(), 0U);
    EXPECT_EQ(signal->GetWave(), nullptr);
}

TEST(Signal, ModeComesFromTheNearestThatHasOne) {
    const SignalPtr top = MakeSignal("");
    const SignalPtr middle = MakeSignal("", top.get());
    const SignalPtr leaf = MakeSignal("", middle.get());
    top->SetMode(2);
    EXPECT_EQ(leaf->GetMode(), 2);
    leaf->SetMode(4);
    EXPECT_EQ(leaf->GetMode(), 4);
    EXPECT_EQ(middle->GetMode(), 2);
}

TEST(Signal, ParentsThatLeadBackEnd) {
    const SignalPtr a = MakeSignal("");
    const SignalPtr b = MakeSignal("", a.get());
    a->SetParent(b.get());
    a->SetName("a");
    char buffer[8] = "?";
    EXPECT_EQ(a->GetMode(), 6);
    EXPECT_EQ(a->GetFullName(buffer, sizeof buffer), E_OUTOFMEMORY);
    EXPECT_STREQ(buffer, "");
}

TEST(Signal, DisplayModes) {
    const SignalPtr logic = MakeSignal(kStdLogic);
    const SignalPtr number = MakeSignal(kInteger);
    EXPECT_EQ(logic->SetDisplayMode(0), S_OK);
    EXPECT_EQ(number->SetDisplayMode(0), E_INVALIDARG);
    EXPECT_EQ(number->GetDisplayMode(), 3);
    const int radixes[] = {1, 2, 8, 10, 16};
    for (int mode = 0; mode < 5; ++mode) {
        logic->SetDisplayMode(mode);
        EXPECT_EQ(logic->GetDisplayRadix(), radixes[mode]);
    }
    for (const int mode : {-1, 5, 7, INT_MIN, INT_MAX}) {
        EXPECT_EQ(number->SetDisplayMode(mode), S_OK);
        EXPECT_EQ(number->GetDisplayMode(), mode);
        EXPECT_EQ(number->GetDisplayRadix(), 1);
    }
}

// The whole name needs one character more than its text and zero.
TEST(Signal, FullNameFillsWhatFits) {
    const SignalPtr top = MakeSignal("");
    const SignalPtr nameless = MakeSignal("", top.get());
    const SignalPtr leaf = MakeSignal("", nameless.get());
    top->SetName("s(3)");
    leaf->SetName(".abc");
    struct Row {
        std::uint32_t size;
        HRESULT result;
        const char* text;
    };
    for (const Row& row :
         {Row{20, S_OK, "s(3).abc"}, Row{10, S_OK, "s(3).abc"}, Row{9, E_OUTOFMEMORY, "s(3)"},
          Row{6, E_OUTOFMEMORY, "s(3)"}, Row{5, E_OUTOFMEMORY, ""}, Row{1, E_OUTOFMEMORY, ""}}) {
        std::vector<char> buffer(row.size + 1, '?');
        EXPECT_EQ(leaf->GetFullName(buffer.data(), row.size), row.result) << row.size;
        EXPECT_STREQ(buffer.data(), row.text) << row.size;
        EXPECT_EQ(buffer.back(), '?') << row.size;
    }
    char one = '?';
    EXPECT_EQ(leaf->GetFullName(nullptr, 5), E_INVALIDARG);
    EXPECT_EQ(leaf->GetFullName(&one, 0), E_INVALIDARG);
    EXPECT_EQ(MakeSignal("")->GetFullName(&one, 1), S_OK);
    EXPECT_EQ(one, '\0');
}

TEST(Signal, TypeNameFitsOrLeavesTheBuffer) {
    const SignalPtr signal = MakeSignal(kStdLogic);
    char buffer[10] = "?";
    EXPECT_EQ(signal->GetTypeName(buffer, 9), E_OUTOFMEMORY);
    EXPECT_EQ(signal->GetTypeName(buffer, 0), E_OUTOFMEMORY);
    EXPECT_STREQ(buffer, "?");
    EXPECT_EQ(signal->GetTypeName(buffer, 10), S_OK);
    EXPECT_STREQ(buffer, "std_logic");
    EXPECT_EQ(MakeSignal("")->GetTypeName(buffer, 10), E_FAIL);
    EXPECT_EQ(MakeSignal("e#0#c2 01")->GetTypeName(buffer, 10), E_FAIL);
}

TEST(Signal, WavesOfOthersAreCounted) {
    const SignalPtr signal = MakeSignal(kInteger);
    ISignalWave* const own = signal->GetWave();
    EXPECT_EQ(signal->SetWave(nullptr), S_OK);
    EXPECT_EQ(signal->GetWave(), own);

    WavePtr wide;
    ASSERT_EQ(CreateSignalWave(8, wide.Out()), S_OK);
    wide->AddEvent(1, 0, nullptr, 0);
    EXPECT_EQ(signal->SetWave(wide.get()), S_OK);
    EXPECT_EQ(signal->SetWave(wide.get()), S_OK);  // itself, as good as any other
    EXPECT_FALSE(signal->OwnsWave());
    EXPECT_EQ(References(*wide), 2U);
    EXPECT_EQ(signal->GetWaveValueSize(), 8U);

    EXPECT_EQ(signal->SetWave(nullptr), S_OK);
    EXPECT_TRUE(signal->OwnsWave());
    EXPECT_EQ(References(*wide), 1U);
    EXPECT_EQ(signal->GetWaveValueSize(), 8U);
    EXPECT_EQ(signal->GetWave()->GetEventCount(), 0U);

    const SignalPtr bus = MakeSignal(kTwoBits);
    EXPECT_EQ(bus->SetWave(wide.get()), E_FAIL);
    EXPECT_EQ(References(*wide), 1U);
}

// The wave of a signal that is gone serves whoever holds it.
TEST(Signal, WaveOutlivesItsSignal) {
    WavePtr wave;
    {
        const SignalPtr signal = MakeSignal(kInteger);
        wave = WavePtr::Share(signal->GetWave());
    }
    EXPECT_EQ(wave->AddEvent(1, 0, nullptr, 0), S_OK);
    EXPECT_EQ(References(*wave), 1U);
}

}  // namespace
}  // namespace corv::test
