#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/files.h"
#include "stremo/byte_code.h"
#include "stremo/recording_reader.h"
#include "stremo/signal_cursor.h"

// What the entries that read recordings share.
namespace corv::fuzz {

inline void Require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

class HeldContent final : public platform::FileContent {
public:
    explicit HeldContent(std::vector<unsigned char> bytes) : bytes_(std::move(bytes)) {}
    platform::Bytes bytes() const noexcept override { return bytes_; }

private:
    std::vector<unsigned char> bytes_;
};

inline constexpr std::size_t kMostBytes = std::size_t{1} << 16;  // that are worth their time

// Opens bytes as a format does; null when it refuses them.
using OpenFormat = std::unique_ptr<recording::Recording> (*)(
    const std::string& file_name, std::unique_ptr<platform::FileContent> content);
inline std::unique_ptr<recording::SignalReader> Open(OpenFormat open,
                                                     const std::vector<unsigned char>& bytes) {
    auto opened = open("fuzz", std::make_unique<HeldContent>(bytes));
    return opened != nullptr ? recording::MakeReader(std::move(opened)) : nullptr;
}

// What a reader says of a signal.
struct SignalInfo {
    SignalInfo(stremo::IEventsStreamRead& reader, int handle) {
        reader.GetSignalInfo(handle, composite, members, name, mode, latest);
    }
    bool composite = false;
    int members = 0;
    CString name;
    int mode = 0;
    std::int64_t latest = 0;
};

// Reads all events, which must keep order, and calls `action(time, handle, value)` for each. The
// notes must say something.
template <class Action>
void ReadEvents(recording::SignalReader& reader, Action action) {
    const std::int64_t start = 0;
    Require(reader.Seek(&start));
    std::int64_t before = 0;
    for (int handle; (handle = reader.Next()) != -1;) {
        unsigned char value[16] = {};
        const std::int64_t time = *reader.GetCurrentTime();
        Require(reader.ReadValue(value) && time >= before);
        before = time;
        action(time, handle, recording::LoadNumber<std::uint64_t>(value));
    }
    for (int i = 0; i < reader.NoteCount(); ++i) {
        Require(*reader.Note(i) != '\0');
    }
}

}  // namespace corv::fuzz
