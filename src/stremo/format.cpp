#include "stremo/format.h"

#include <utility>

#include "stremo/event_file/event_file.h"
#include "stremo/ghw/recording.h"
#include "stremo/stream_error.h"
#include "stremo/vcd/recording.h"

namespace corv::recording {
namespace {

constexpr Format kFormats[] = {
    {kEventFileName, IsEventFile, OpenEventFile},
    {kGhwName, IsGhw, OpenGhw},
    {kVcdName, IsVcd, OpenVcd},
};

// Returns whether a file begins like an FST file: with a header of 329 bytes, or with the whole
// file packed. FST is not read; recognising it lets the message say what to do.
bool IsFst(platform::Bytes bytes) noexcept {
    constexpr unsigned char kHeader[] = {0, 0, 0, 0, 0, 0, 0, 1, 0x49};
    constexpr std::size_t kPacked = 17;  // where the packed part begins
    const platform::Bytes front = bytes.first(std::min(bytes.size(), std::size(kHeader)));
    return std::equal(std::begin(kHeader), std::end(kHeader), front.begin(), front.end()) ||
           (bytes.size() > kPacked + 1 && bytes[0] == 0xFE && bytes[kPacked] == 0x1F &&
            bytes[kPacked + 1] == 0x8B);
}

const char* WhyUnknown(platform::Bytes beginning) noexcept {
    if (beginning.empty()) {
        return "it is empty";
    }
    return IsFst(beginning)
               ? "it is an FST file, which is not read; convert it with fst2vcd first"
               : "it is not a recording of a known format: corv event file, VCD or GHW";
}

}  // namespace

std::span<const Format> Formats() noexcept {
    return kFormats;
}

std::unique_ptr<Recording> OpenContent(const std::string& name,
                                       std::unique_ptr<platform::FileContent> content) {
    const platform::Bytes beginning = content->BringPart(0, kTellingBytes);
    for (const Format& format : kFormats) {
        if (format.recognises(beginning)) {
            return format.open(name, std::move(content));
        }
    }
    const char* const failure = content->failure();
    SetError(name, failure != nullptr ? failure : WhyUnknown(beginning));
    return nullptr;
}

std::unique_ptr<Recording> OpenRecording(platform::Files& files, const std::string& file_name) {
    auto opened = files.Open(file_name);
    if (opened.file == nullptr) {
        SetError(file_name, opened.failure);
        return nullptr;
    }
    return OpenContent(file_name, std::move(opened.file));
}

}  // namespace corv::recording
