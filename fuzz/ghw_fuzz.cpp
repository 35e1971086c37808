// Any bytes as a GHW file. What is read must keep order, have types that can be parsed and values
// that fit them; a signal read alone must have the events that it has among all.

#include "recording_fuzz.h"
#include "stremo/ghw/recording.h"

namespace {

using corv::fuzz::Open;
using corv::fuzz::Require;
using corv::recording::OpenGhw;
using corv::recording::SignalReader;
using corv::test::SignalInfo;

struct Event {
    std::int64_t time;
    std::uint64_t value;
    bool operator==(const Event&) const = default;
};
using Events = std::map<int, std::vector<Event>>;

Events ReadAll(SignalReader& reader) {
    Events events;
    const auto take = [&](std::int64_t time, int handle, std::uint64_t value) {
        std::vector<Event>& list = events[handle];
        Require(list.empty() || (list.back().time < time && list.back().value != value));
        list.push_back({time, value});
    };
    corv::fuzz::ReadEvents(reader, take);
    return events;
}

// The types of a signal and all below it; `types` holds those that were parsed before.
void CheckTypes(SignalReader& reader, int handle, std::map<const char*, KTypeInfo::EKind>& types) {
    const SignalInfo info(reader, handle);
    const char* const text = reader.GetTypeString(handle);
    if (types.emplace(text, KTypeInfo::KindNone).second) {
        types[text] = KTypeInfo(CString(text)).GetKind();
    }
    const KTypeInfo::EKind kind = types[text];
    Require(info.composite ? kind == KTypeInfo::KindArray || kind == KTypeInfo::KindRecord
                           : kind == KTypeInfo::KindEnum || kind == KTypeInfo::KindInteger ||
                                 kind == KTypeInfo::KindFloat);
    for (int i = 0; i < info.members && i < 100; ++i) {
        CheckTypes(reader, reader.GetSubSignalHandle(handle, i), types);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::vector<unsigned char> bytes(data, data + size);
    corv::recording::IsGhw(bytes);
    const std::unique_ptr<SignalReader> reader =
        size < corv::fuzz::kMostBytes ? Open(OpenGhw, bytes) : nullptr;
    if (reader == nullptr) {
        return 0;
    }
    std::map<const char*, KTypeInfo::EKind> types;
    for (int i = 0; i < reader->GetSignalCount(); ++i) {
        CheckTypes(*reader, reader->GetSignalHandle(i), types);
    }
    const Events all = ReadAll(*reader);
    if (!all.empty()) {
        const auto chosen = std::next(all.begin(), static_cast<std::ptrdiff_t>(size % all.size()));
        const std::unique_ptr<SignalReader> alone = Open(OpenGhw, bytes);
        const std::vector<int> handles{chosen->first};
        alone->SetInterest(handles);
        const Events events = ReadAll(*alone);
        Require(events.size() == 1 && events.begin()->second == chosen->second);
    }
    return 0;
}
