#pragma once

#include "corv/frame/com_ptr.h"
#include "corv/signals/signal.h"
#include "tests/support/test.h"

// Signals for tests.
namespace corv::test {

using SignalPtr = frame::ComPtr<ISignal>;
using WavePtr = frame::ComPtr<ISignalWave>;
using ContainerPtr = frame::ComPtr<ISignalContainer>;

inline constexpr const char* kBit = "e#3#bitc2 01";
inline constexpr const char* kStdLogic = "e#9#std_logicc9 UX01ZWLH-";
inline constexpr const char* kInteger = "i#7#integerrict-2147483648 2147483647";
inline constexpr const char* kReal = "f#4#realrrct-1.79769e+308 1.79769e+308";
inline constexpr const char* kTwoBits = "a#22#bit_vector(1 downto 0)1 ricd1 0 e#3#bitc2 01";

inline SignalPtr MakeSignal(const std::string& type, ISignal* parent = nullptr) {
    SignalPtr signal;
    EXPECT_EQ(CreateSignal(type.c_str(), parent, signal.Out()), S_OK) << type;
    return signal;
}

inline ISignal& MemberAt(ISignal& signal, std::size_t index) {
    ISignal* member = nullptr;
    EXPECT_EQ(signal.GetSubSignals()->GetAt(static_cast<std::uint32_t>(index), &member), S_OK);
    return *member;
}

template <class Interface>
std::uint32_t References(Interface& object) {
    object.AddRef();
    return object.Release();
}

// Gives each leaf below its first event, the value of one character.
inline void SetBits(ISignal& signal, const std::string& characters, std::int64_t time = 0) {
    for (std::size_t i = 0; i < characters.size(); ++i) {
        ISignal& member = MemberAt(signal, i);
        std::uint32_t value = 0;
        const char text[] = {characters[i], '\0'};
        EXPECT_EQ(member.TextToValue(text, &value, sizeof value), S_OK);
        EXPECT_EQ(member.GetWave()->AddEvent(time, 0, &value, sizeof value), S_OK);
    }
}

}  // namespace corv::test
