// A formula becomes events of a signal's wave, and these become the texts that a viewer shows.

#include <corv/corv.h>

#include <array>
#include <iostream>

using corv::frame::ComPtr;

int main() {
    // the signal keeps its stimulator's formula in normal form
    ComPtr<ISignal> signal;
    if (FAILED(CreateStdSignal(1, nullptr, signal.Out()))) {  // std_logic
        return 1;
    }
    signal->SetName("clk");
    signal->SetStimulatorInfo(0, 0, "0 0,1 10,0 20 -r 40");

    std::array<char, 100> formula{};
    if (FAILED(signal->GetStimulatorInfo(nullptr, nullptr, formula.data(), formula.size()))) {
        return 1;
    }
    std::cout << signal->GetName() << ": " << formula.data() << '\n';

    // the stimulus is asked event by event; each value is stored as the type stores it
    CStimulus stimulus;
    if (stimulus.Create(formula.data(), 0) == 0) {
        return 1;
    }
    constexpr std::int64_t kEnd = 100;
    for (auto t = stimulus.GetNextEventTime(-1); t != -1 && t <= kEnd;
         t = stimulus.GetNextEventTime(t)) {
        CString text;
        std::array<unsigned char, 8> value{};
        if (stimulus.GetValue(t, text) == 0 ||
            FAILED(signal->TextToValue(text, value.data(), value.size()))) {
            return 1;
        }
        signal->GetWave()->AddEvent(t, 0, value.data(), value.size());
    }

    // the viewer walks the events
    ComPtr<IWaveEventEnumerator> events;
    if (FAILED(signal->EnumEvents(events.Out()))) {
        return 1;
    }
    IWaveEvent* event = nullptr;
    while (events->Next(1, &event, nullptr) == S_OK) {
        std::cout << event->GetTime() << " ps: " << signal->GetEventText(event) << '\n';
    }
    std::cout << "at 55 ps: " << signal->GetValueTextAt(55, FindAtOrBefore) << '\n';
}
