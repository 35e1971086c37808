#include "corv/library/library.h"
#include "corv/signals/signal.h"
#include "signals/type_cache.h"
#include "tests/signals/signal_support.h"
#include "tests/support/test.h"

namespace corv::test {
namespace {

std::string Range(int left, int right) {
    return std::string("ric") + (left < right ? "t" : "d") + std::to_string(left) + " " +
           std::to_string(right);
}
std::string Array(const std::string& name, const std::vector<std::string>& ranges,
                  const std::string& element) {
    std::string text =
        "a#" + std::to_string(name.size()) + "#" + name + std::to_string(ranges.size());
    for (const std::string& range : ranges) {
        text += " " + range;
    }
    return text + " " + element;
}

// All signals below one, a line each: full name, wave size, class, display mode, handle.
std::string Tree(ISignal& signal) {
    char name[400];
    EXPECT_EQ(signal.GetFullName(name, sizeof name), S_OK);
    std::string text = std::string(name) + " " + std::to_string(signal.GetWaveValueSize()) + " " +
                       std::to_string(signal.GetStdLogicClass()) + " " +
                       std::to_string(signal.GetDisplayMode()) + " " +
                       std::to_string(signal.GetHandle()) + "\n";
    ISignalContainer* const members = signal.GetSubSignals();
    for (int i = 0; members != nullptr && i < members->GetCount(); ++i) {
        ISignal& member = MemberAt(signal, static_cast<std::size_t>(i));
        EXPECT_EQ(member.GetParent(), &signal);
        EXPECT_EQ(References(member), 1U);
        text += Tree(member);
    }
    return text;
}

TEST(SignalType, StandardTypes) {
    struct Row {
        std::uint32_t index;
        HRESULT result;
        const char* tree;
    };
    for (const Row& row :
         {Row{0, S_OK, " 4 0 3 -1\n"}, Row{1, S_OK, " 4 1 0 -1\n"}, Row{2, S_OK, " 4 1 0 -1\n"},
          Row{3, S_OK, " 4 0 3 -1\n"}, Row{4, S_OK, " 8 0 3 -1\n"}, Row{5, S_OK, " 4 0 3 -1\n"},
          Row{6, E_FAIL, ""}, Row{7, E_FAIL, ""}, Row{8, E_FAIL, ""}, Row{9, E_INVALIDARG, ""},
          Row{4294967295U, E_INVALIDARG, ""}}) {
        SignalPtr signal;
        EXPECT_EQ(CreateStdSignal(row.index, nullptr, signal.Out()), row.result) << row.index;
        EXPECT_EQ(signal ? Tree(*signal) : "", row.tree) << row.index;
    }
    for (const char* const text : {"", "no type", "e#3#bitc2 0"}) {
        ISignal* signal = nullptr;
        EXPECT_EQ(CreateSignal(text, nullptr, &signal), *text == '\0' ? S_OK : E_FAIL);
        SignalPtr(signal).get();
    }
}

TEST(SignalType, MembersByTable) {
    const std::string record = "r#3#rec3 a " + std::string(kBit) + " v " +
                               Array("std_logic_vector(1 downto 0)", {Range(1, 0)}, kStdLogic) +
                               " r r#0#0 ";
    struct Row {
        std::string type;
        const char* tree;
    };
    const Row rows[] = {
        {Array("Bit_Vector(2 downto 0)", {Range(2, 0)}, kBit),
         "s 0 6 0 -1\ns(2) 4 0 3 -1\ns(1) 4 0 3 -1\ns(0) 4 0 3 -1\n"},
        {Array("grid", {Range(0, 1), Range(2, 1)}, kReal),
         "s 0 0 4 -1\ns(0,2) 8 0 3 -1\ns(0,1) 8 0 3 -1\ns(1,2) 8 0 3 -1\ns(1,1) 8 0 3 -1\n"},
        {Array("m", {Range(-2147483647 - 1, -2147483647)}, kBit),
         "s 0 0 4 -1\ns(-2147483648) 4 0 3 -1\ns(-2147483647) 4 0 3 -1\n"},
        {record,
         "s 0 0 4 -1\ns.a 4 0 3 -1\ns.v 0 7 0 -1\ns.v(1) 4 1 0 -1\ns.v(0) 4 1 0 -1\ns.r 0 0 4 "
         "-1\n"},
        {Array("rows", {Range(0, 1)}, Array("cols", {Range(1, 0)}, kStdLogic)),
         "s 0 0 4 -1\ns(0) 0 0 4 -1\ns(0)(1) 4 1 0 -1\ns(0)(0) 4 1 0 -1\n"
         "s(1) 0 0 4 -1\ns(1)(1) 4 1 0 -1\ns(1)(0) 4 1 0 -1\n"},
        {"a#1#x0  " + std::string(kBit), "s 0 0 4 -1\ns() 4 0 3 -1\n"},
    };
    for (const Row& row : rows) {
        const SignalPtr signal = MakeSignal("");
        signal->SetName("s");
        signal->SetHandle(8);
        ASSERT_EQ(signal->SetTypeInfo(row.type.c_str()), S_OK) << row.type;
        EXPECT_EQ(Tree(*signal), row.tree);
        EXPECT_EQ(signal->GetTypeInfo(), row.type);
    }
}

// What a type must not build, whatever it stands in.
TEST(SignalType, BoundsOfMembers) {
    const std::string longest_name = "-2147483648,";
    std::vector<std::string> many(22, Range(-2147483647 - 1, -2147483647 - 1));
    struct Row {
        std::string type;
        HRESULT result;
    };
    const std::string twelve =
        Array("x", std::vector<std::string>(12, Range(0, 255)), kBit);  // 256^12 elements
    std::vector<Row> rows{
        {Array("x", {Range(0, 255)}, kBit), S_OK},
        {Array("x", {Range(0, 256)}, kBit), E_FAIL},
        {Array("x", {Range(256, 0)}, kBit), E_FAIL},
        {Array("x", {Range(0, 2147483647)}, kBit), E_FAIL},
        {Array("x", {Range(-2147483647 - 1, 2147483647)}, kBit), E_FAIL},
        {Array("x", {Range(2147483647, -2147483647 - 1)}, kBit), E_FAIL},
        {twelve, E_FAIL},
        {"r#0#2 a " + twelve + " b " + twelve, E_FAIL},
        {"no type", E_INVALIDARG},
        {Array("x", many, kBit), E_FAIL},  // an element's name of 265 characters
        {Array("x", {many.begin(), many.begin() + 21}, kBit), S_OK},  // of 253
    };
    std::vector<std::string> ones(127, Range(1, 1));
    rows.push_back({Array("x", ones, kBit), S_OK});  // of 255
    ones.back() = Range(10, 10);
    rows.push_back({Array("x", ones, kBit), E_FAIL});  // of 256
    ones.back() = Range(1, 1);
    ones.push_back(ones.back());
    rows.push_back({Array("x", ones, kBit), E_FAIL});  // of 257
    for (const Row& row : rows) {
        const SignalPtr signal = MakeSignal(kStdLogic);
        ISignalWave* const wave = signal->GetWave();
        EXPECT_EQ(signal->SetTypeInfo(row.type.c_str()), row.result) << row.type;
        if (FAILED(row.result)) {
            EXPECT_EQ(signal->GetWave(), wave);
            EXPECT_STREQ(signal->GetTypeInfo(), kStdLogic);
            EXPECT_EQ(signal->GetStdLogicClass(), row.result == E_FAIL ? 0 : 1);
            // the type is the old one still, and so it changes nothing
            EXPECT_EQ(signal->SetTypeInfo(kStdLogic), S_OK);
            EXPECT_EQ(signal->GetWave(), wave);
        }
    }
}

TEST(SignalType, ChangesOfType) {
    const SignalPtr signal = MakeSignal(kStdLogic);
    WavePtr old = WavePtr::Share(signal->GetWave());
    EXPECT_EQ(signal->SetTypeInfo(kStdLogic), S_OK);
    EXPECT_EQ(signal->GetWave(), old.get());
    EXPECT_EQ(signal->SetTypeInfo(kBit), S_OK);  // of one byte, as the old one
    EXPECT_NE(signal->GetWave(), old.get());
    old = WavePtr::Share(signal->GetWave());
    EXPECT_EQ(signal->SetTypeInfo(kInteger), S_OK);  // of the four bytes that the wave has
    EXPECT_EQ(signal->GetWave(), old.get());

    WavePtr other;
    CreateSignalWave(4, other.Out());
    signal->SetWave(other.get());
    signal->SetDisplayMode(1);
    EXPECT_EQ(signal->SetTypeInfo(kReal), S_OK);
    EXPECT_TRUE(signal->OwnsWave());
    EXPECT_EQ(signal->GetWaveValueSize(), 8U);
    EXPECT_EQ(signal->GetDisplayMode(), 3);

    signal->SetHandle(3);
    EXPECT_EQ(signal->SetTypeInfo(kTwoBits), S_OK);
    EXPECT_EQ(signal->GetWave(), nullptr);
    EXPECT_EQ(signal->GetHandle(), -1);
    const SignalPtr member = SignalPtr::Share(&MemberAt(*signal, 0));
    EXPECT_EQ(References(*member), 2U);
    EXPECT_EQ(signal->SetTypeInfo(kReal), S_OK);
    EXPECT_EQ(References(*member), 1U);
    EXPECT_EQ(signal->GetSubSignals(), nullptr);
    EXPECT_EQ(signal->GetWaveValueSize(), 8U);
}

// Whatever request fails, nothing is lost and the old structure stays.
TEST(SignalType, WithoutMemory) {
    const std::string nested = "r#3#rec2 v " + Array("vec", {Range(2, 0)}, kStdLogic) + " n " +
                               Array("nums", {Range(0, 1)}, kInteger);
    SignalPtr signal;
    ISignal* old_member = nullptr;
    FailEveryAllocation(
        [&] {
            signals::ResetTypeCache();
            signal = MakeSignal(kTwoBits);
            signal->SetName("s");
            old_member = &MemberAt(*signal, 1);
        },
        [&] { return signal->SetTypeInfo(nested.c_str()); },
        [&](HRESULT result) {
            if (SUCCEEDED(result)) {
                return;  // only a property could not be kept
            }
            EXPECT_TRUE(result == E_FAIL || result == E_OUTOFMEMORY);
            EXPECT_EQ(&MemberAt(*signal, 1), old_member);
            EXPECT_STREQ(signal->GetTypeInfo(), kTwoBits);
        });
    FailEveryAllocation([] { signals::ResetTypeCache(); },
                        [&] {
                            ISignal* made = signal.get();  // which the factory must overwrite
                            const HRESULT result = CreateSignal(nested.c_str(), nullptr, &made);
                            EXPECT_EQ(SignalPtr(made).get() == nullptr, FAILED(result));
                            return result;
                        },
                        [](HRESULT) {});
}

}  // namespace
}  // namespace corv::test
