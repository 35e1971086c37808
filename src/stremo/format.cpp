#include "stremo/format.h"

#include <algorithm>

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

std::unique_ptr<Recording> OpenRecording(platform::Files& files, const std::string& file_name) {
    auto opened = files.Open(file_name);
    if (opened.file == nullptr) {
        SetError(file_name, opened.failure);
        return nullptr;
    }
    const platform::Bytes beginning = opened.file->BringPart(0, kTellingBytes);
    for (const Format& format : kFormats) {
        if (format.recognises(beginning)) {
            return format.open(file_name, std::move(opened.file));
        }
    }
    SetError(file_name, beginning.empty() ? "it is empty" : "it is no recording of a known format");
    return nullptr;
}

}  // namespace corv::recording
