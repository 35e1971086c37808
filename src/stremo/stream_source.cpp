// Opens a recording whose bytes a host delivers.

#include "corv/stremo/stream_source.h"

#include <string>
#include <utility>

#include "platform/guard.h"
#include "platform/windowed_content.h"
#include "stremo/format.h"
#include "stremo/ghw/recording.h"
#include "stremo/recording_reader.h"
#include "stremo/signal_cursor.h"
#include "stremo/stream_error.h"

namespace corv {
namespace {

// Adapts the source of a host to the interface of the platform layer.
class HostSource final : public platform::ContentSource {
public:
    explicit HostSource(std::unique_ptr<IStreamSource> source) noexcept
        : source_(std::move(source)) {}
    const char* Read(std::uint64_t offset, unsigned char* to, std::size_t size) noexcept override {
        return source_->Read(offset, to, size);
    }

private:
    std::unique_ptr<IStreamSource> source_;
};

std::unique_ptr<recording::Recording> Open(const std::string& name,
                                           std::unique_ptr<IStreamSource> source, int time_unit) {
    if (source == nullptr) {
        recording::SetError(name, "there is no source");
        return nullptr;
    }
    const std::uint64_t size = source->GetSize();
    auto content = platform::MakeContent(std::make_unique<HostSource>(std::move(source)), size);
    if (content == nullptr) {
        recording::SetError(name, "out of memory");
        return nullptr;
    }
    return time_unit < 0 ? recording::OpenContent(name, std::move(content))
                         : recording::OpenGhwContent(name, std::move(content), time_unit);
}

}  // namespace

std::unique_ptr<stremo::IEventsStreamRead> OpenStreamSource(const char* name,
                                                            std::unique_ptr<IStreamSource> source,
                                                            int time_unit) noexcept {
    std::unique_ptr<stremo::IEventsStreamRead> reader;
    recording::ClearError();
    const bool done = platform::Done([&] {
        const std::string text = name != nullptr ? name : "";
        if (auto opened = Open(text, std::move(source), time_unit)) {
            reader = recording::MakeReader(std::move(opened));
        }
    });
    if (!done) {
        recording::SetError(name != nullptr ? name : "", "out of memory");
    }
    return reader;
}

}  // namespace corv
