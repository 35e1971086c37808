// Opens recordings by name. A registered name takes precedence over a file. The registry is a plain
// list, since hosts register only a few names.

#include "stremo/stream_registry.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "corv/stremo/events_stream_read.h"
#include "corv/stremo/streams.h"
#include "platform/ascii.h"
#include "platform/files.h"
#include "platform/guard.h"
#include "platform/immortal.h"
#include "stremo/format.h"
#include "stremo/recording_reader.h"
#include "stremo/stream_error.h"

namespace corv::recording {
namespace {

using Factory = std::function<stremo::IEventsStreamRead*()>;

struct RegisteredStream {
    std::string name;
    Factory factory;
};
using Streams = std::vector<RegisteredStream>;

Streams& Registered() noexcept {
    // It outlives all static objects, whose destructors may still unregister names.
    static platform::Immortal<Streams> streams;
    return *streams;
}

Streams::iterator Find(std::string_view name) noexcept {
    Streams& all = Registered();
    auto at = all.begin();
    while (at != all.end() && !platform::EqualNoCase(at->name, name)) {
        ++at;
    }
    return at;
}

// The factory is a copy, since it may register or unregister names while it runs.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
stremo::IEventsStreamRead* OpenRegistered(const char* name, Factory factory) {
    stremo::IEventsStreamRead* const reader = factory();
    if (reader == nullptr && *corv::LastStreamError() == '\0') {
        SetError(name, "the registered factory returned no recording");
    }
    return reader;
}

stremo::IEventsStreamRead* Open(const char* name) {
    if (const auto stream = Find(name); stream != Registered().end()) {
        return OpenRegistered(name, stream->factory);
    }
    std::unique_ptr<Recording> recording = OpenRecording(platform::SystemFiles(), name);
    return recording != nullptr ? MakeReader(std::move(recording)).release() : nullptr;
}

}  // namespace

bool IsRegisteredStream(std::string_view name) noexcept {
    return Find(name) != Registered().end();
}

void ResetStreams() noexcept {
    Streams().swap(Registered());
}

}  // namespace corv::recording

namespace stremo {

IEventsStreamRead* CreateStreamRead(const char* file_name) noexcept {
    IEventsStreamRead* reader = nullptr;
    const char* const name = file_name != nullptr ? file_name : "";
    corv::recording::ClearError();
    if (!corv::platform::Done([&] { reader = corv::recording::Open(name); })) {
        corv::recording::SetError(name, "out of memory");
    }
    return reader;
}

bool RegisterStream(const char* name, std::function<IEventsStreamRead*()> factory) noexcept {
    using namespace corv::recording;
    return name != nullptr && *name != '\0' && factory != nullptr && !IsRegisteredStream(name) &&
           corv::platform::Done([&] {
               Registered().push_back({name, std::move(factory)});
           });
}

bool UnregisterStream(const char* name) noexcept {
    using namespace corv::recording;
    const auto stream = Find(name != nullptr ? name : "");
    if (stream == Registered().end()) {
        return false;
    }
    Registered().erase(stream);
    return true;
}

}  // namespace stremo
