#include "corv/stremo/streams.h"

#include <memory>
#include <string>
#include <utility>

#include "platform/files.h"
#include "platform/guard.h"
#include "stremo/ghw/recording.h"
#include "stremo/recording_reader.h"
#include "stremo/signal_cursor.h"
#include "stremo/stream_error.h"

namespace corv {
namespace {

std::unique_ptr<stremo::IEventsStreamRead> Open(const std::string& name, int time_unit) {
    auto opened = platform::SystemFiles().Open(name);
    if (opened.file == nullptr) {
        recording::SetError(name, opened.failure);
        return nullptr;
    }
    auto made = recording::OpenGhwContent(name, std::move(opened.file), time_unit);
    return made != nullptr ? recording::MakeReader(std::move(made)) : nullptr;
}

}  // namespace

std::unique_ptr<stremo::IEventsStreamRead> OpenGhwRecording(const char* file_name,
                                                            int time_unit) noexcept {
    std::unique_ptr<stremo::IEventsStreamRead> reader;
    const char* const name = file_name != nullptr ? file_name : "";
    recording::ClearError();
    if (!platform::Done([&] { reader = Open(name, time_unit); })) {
        recording::SetError(name, "out of memory");
    }
    return reader;
}

}  // namespace corv
