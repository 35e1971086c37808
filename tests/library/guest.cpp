// A host that a test loads and unloads: what it does goes through the shared library, which comes
// and goes with it.

#include <cstdint>
#include <memory>
#include <string>

#include "corv/corv.h"

namespace {

using corv::frame::ComPtr;

bool Record(const char* file_name) {
    const std::unique_ptr<IEventsStreamWrite> writer(stremo::CreateStreamWrite(file_name));
    const std::int64_t time = 5;
    const std::uint8_t value = 1;
    return writer && writer->WriteScalarSignal(0, "a", -1, 0, 0, &time) &&
           writer->WriteTypeInfo(0, "e#3#bitc2 01") && writer->WriteEvent(0, &time, &value, 1) &&
           writer->Close();
}

bool Replays(const std::string& stream) {
    CStimulus stimulus;
    CString value;
    return stimulus.Create(("/custom " + stream + ", a").c_str(), 0) != 0 &&
           stimulus.GetNextEventTime(0) == 5 && stimulus.GetValue(7, value) != 0 && value == "1";
}

// Uses what the library keeps until it goes: types, value texts, waves, counters.
bool Shows() {
    ComPtr<ISignal> signal;
    if (FAILED(CreateSignal("e#3#bitc2 01", nullptr, signal.Out()))) {
        return false;
    }
    signal->SetStimulatorInfo(0, 0, "0 0, 1 5ns -r 10ns");
    const std::uint32_t one = 1;
    signal->GetWave()->AddEvent(3, 0, &one, sizeof one);
    return std::string(signal->GetValueTextAt(4, FindAtOrBefore)) == "1";
}

}  // namespace

// Replays two recordings that it has made, one by its path and one by a name. Gives the hierarchy
// separator, 0 when something has failed.
extern "C" [[gnu::visibility("default")]] char UseCorv(const char* by_path, const char* by_name) {
    const std::string file = by_name;
    stremo::RegisterStream("guest:1", [file] { return stremo::CreateStreamRead(file.c_str()); });
    const bool good =
        Record(by_path) && Record(by_name) && Replays(by_path) && Replays("guest:1") && Shows();
    return good ? corv::HierarchySeparator() : '\0';
}
