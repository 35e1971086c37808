// Any bytes as a VCD file. What is read must keep order and stay within what was declared; written
// and read again it must be the same signals with the same events.

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/files.h"
#include "stremo/recording_reader.h"
#include "stremo/vcd_recording.h"
#include "stremo/vcd_writer.h"

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

// One file in memory.
class MemoryFile final : public corv::platform::Files {
public:
    Opened<corv::platform::FileContent> Open(const std::string&) override { return {}; }
    Opened<corv::platform::FileOutput> Create(const std::string&) override {
        bytes.clear();
        return {std::make_unique<Output>(bytes), nullptr};
    }

    std::vector<unsigned char> bytes;

private:
    class Output final : public corv::platform::FileOutput {
    public:
        explicit Output(std::vector<unsigned char>& bytes) : bytes_(bytes) {}
        const char* Append(Bytes part) noexcept override {
            bytes_.insert(bytes_.end(), part.begin(), part.end());
            return nullptr;
        }
        const char* Close() noexcept override { return nullptr; }

    private:
        std::vector<unsigned char>& bytes_;
    };
};

std::unique_ptr<SignalReader> Open(const std::vector<unsigned char>& bytes) {
    auto recording = corv::recording::OpenVcd("fuzz.vcd", std::make_unique<Content>(bytes));
    return recording != nullptr ? corv::recording::MakeReader(std::move(recording)) : nullptr;
}

// The last value of each scalar at each time.
using Events = std::map<std::pair<std::int64_t, int>, std::uint64_t>;

Events ReadAll(SignalReader& reader) {
    Events events;
    const std::int64_t start = 0;
    Require(reader.Seek(&start));
    std::int64_t before = -1;
    for (int handle; (handle = reader.Next()) != -1;) {
        const std::int64_t time = *reader.GetCurrentTime();
        Require(time >= before);
        before = time;
        std::uint64_t value[2] = {};
        Require(reader.ReadValue(value));
        events[{time, handle}] = value[0];
    }
    for (int i = 0; i < reader.NoteCount(); ++i) {
        Require(*reader.Note(i) != '\0');
    }
    return events;
}

// Whether the reader has signals that a VCD file can't be written with: arrays without elements.
bool HasEmptyArrays(SignalReader& reader) {
    for (int i = 0; i < reader.GetSignalCount(); ++i) {
        bool composite = false;
        int members = 0;
        int mode = 0;
        std::int64_t time = 0;
        CString name;
        reader.GetSignalInfo(reader.GetSignalHandle(i), composite, members, name, mode, time);
        if (composite && members == 0) {
            return true;
        }
    }
    return false;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kMost = 1 << 16;
    const std::vector<unsigned char> bytes(data, data + size);
    corv::recording::IsVcd(bytes);
    const std::unique_ptr<SignalReader> reader = size < kMost ? Open(bytes) : nullptr;
    if (reader == nullptr) {
        return 0;
    }
    ReadAll(*reader);
    MemoryFile file;
    Require(corv::vcd::WriteVcd(*reader, file, "out.vcd", {}));
    const std::unique_ptr<SignalReader> written = Open(file.bytes);
    Require(written != nullptr);
    const Events events = ReadAll(*written);
    MemoryFile again;
    Require(corv::vcd::WriteVcd(*written, again, "out.vcd", {}));
    // names may have been repaired the first time, no more the second
    const std::unique_ptr<SignalReader> rewritten = Open(again.bytes);
    Require(rewritten != nullptr && !HasEmptyArrays(*rewritten));
    Require(ReadAll(*rewritten) == events);
    return 0;
}
