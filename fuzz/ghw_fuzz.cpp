// Any bytes as a GHW file. What is read must keep order, have types that can be parsed and values
// that fit them; a signal read alone must have the events that it has among all.

#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "corv/typeinfo/type_info.h"
#include "platform/files.h"
#include "stremo/byte_code.h"
#include "stremo/ghw_recording.h"
#include "stremo/recording_reader.h"

namespace {

using corv::platform::Bytes;
using corv::recording::SignalReader;

void Require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

class Content final : public corv::platform::FileContent {
public:
    explicit Content(std::vector<unsigned char> bytes) : bytes_(std::move(bytes)) {}
    Bytes bytes() const noexcept override { return bytes_; }

private:
    std::vector<unsigned char> bytes_;
};

std::unique_ptr<SignalReader> Open(const std::vector<unsigned char>& bytes) {
    auto recording = corv::recording::OpenGhw("fuzz.ghw", std::make_unique<Content>(bytes));
    return recording != nullptr ? corv::recording::MakeReader(std::move(recording)) : nullptr;
}

struct Event {
    std::int64_t time;
    std::uint64_t value;
    bool operator==(const Event&) const = default;
};
using Events = std::map<int, std::vector<Event>>;

Events ReadAll(SignalReader& reader) {
    Events events;
    const std::int64_t start = 0;
    Require(reader.Seek(&start));
    std::int64_t before = 0;
    for (int handle; (handle = reader.Next()) != -1;) {
        unsigned char value[16] = {};
        Require(reader.ReadValue(value) && *reader.GetCurrentTime() >= before);
        before = *reader.GetCurrentTime();
        const Event event{before, corv::recording::LoadNumber<std::uint64_t>(value)};
        std::vector<Event>& list = events[handle];
        Require(list.empty() || (list.back().time < before && list.back().value != event.value));
        list.push_back(event);
    }
    for (int i = 0; i < reader.NoteCount(); ++i) {
        Require(*reader.Note(i) != '\0');
    }
    return events;
}

// The types of a signal and all below it; `types` holds those that were parsed before.
void CheckTypes(SignalReader& reader, int handle, std::map<const char*, KTypeInfo::EKind>& types) {
    bool composite = false;
    int members = 0;
    int mode = 0;
    std::int64_t latest = 0;
    CString name;
    reader.GetSignalInfo(handle, composite, members, name, mode, latest);
    const char* const text = reader.GetTypeString(handle);
    if (types.emplace(text, KTypeInfo::KindNone).second) {
        types[text] = KTypeInfo(CString(text)).GetKind();
    }
    const KTypeInfo::EKind kind = types[text];
    Require(composite ? kind == KTypeInfo::KindArray || kind == KTypeInfo::KindRecord
                      : kind == KTypeInfo::KindEnum || kind == KTypeInfo::KindInteger ||
                            kind == KTypeInfo::KindFloat);
    for (int i = 0; i < members && i < 100; ++i) {
        CheckTypes(reader, reader.GetSubSignalHandle(handle, i), types);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kMost = 1 << 16;
    const std::vector<unsigned char> bytes(data, data + size);
    corv::recording::IsGhw(bytes);
    const std::unique_ptr<SignalReader> reader = size < kMost ? Open(bytes) : nullptr;
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
        const std::unique_ptr<SignalReader> alone = Open(bytes);
        const std::vector<int> handles{chosen->first};
        alone->SetInterest(handles);
        const Events events = ReadAll(*alone);
        Require(events.size() == 1 && events.begin()->second == chosen->second);
    }
    return 0;
}
