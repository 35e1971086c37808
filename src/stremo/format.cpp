#include "stremo/format.h"

#include <utility>

#include "stremo/event_file.h"
#include "stremo/ghw_recording.h"
#include "stremo/stream_error.h"
#include "stremo/vcd_recording.h"

namespace corv::recording {
namespace {

constexpr Format kFormats[] = {
    {kEventFileName, IsEventFile, OpenEventFile},
    {kGhwName, IsGhw, OpenGhw},
    {kVcdName, IsVcd, OpenVcd},
};

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
    SetError(name, failure != nullptr  ? failure
                   : beginning.empty() ? "it is empty"
                                       : "it is no recording of a known format");
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
