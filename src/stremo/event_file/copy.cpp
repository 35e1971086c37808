#include "stremo/event_file/copy.h"

#include <algorithm>
#include <array>
#include <limits>
#include <memory>
#include <utility>
#include <vector>

#include "corv/stremo/streams.h"
#include "platform/guard.h"
#include "stremo/event_file/writer.h"
#include "stremo/kept_properties.h"
#include "stremo/signal_cursor.h"
#include "stremo/stream_error.h"

namespace corv::recording {
namespace {

constexpr std::uint64_t kReportEvery = 1U << 16;  // events

struct Value {
    std::array<unsigned char, 16> bytes{};
};

// Operations that fail return false with the stream error set.
class Copy {
public:
    Copy(stremo::IEventsStreamRead& reader, IEventsStreamWrite& writer,
         const std::string& file_name, const EventFileOptions& options)
        : reader_(reader),
          writer_(writer),
          file_name_(file_name),
          options_(options),
          end_(options.end >= 0 ? options.end : std::numeric_limits<std::int64_t>::max()) {}

    bool WriteSignals();
    // Returns false if they cannot be written. What cannot be read ends them early.
    bool WriteEvents();
    // Returns whether they have been read to the end.
    bool IsWhole() const noexcept { return whole_; }

private:
    bool WriteSignal(int handle, int parent, int index);
    bool WritePlace(int handle, int parent, int index, std::pair<bool, int>& members);
    bool WriteText(int handle);
    void TellInterest();
    bool WriteStart();
    bool WriteNext(int handle, std::int64_t time);
    bool Write(int handle, std::int64_t time, const Value& value);

    stremo::IEventsStreamRead& reader_;
    IEventsStreamWrite& writer_;
    const std::string& file_name_;
    const EventFileOptions& options_;
    const std::int64_t end_;
    std::vector<int> leaves_;  // the scalars' handles, in order
    std::uint64_t written_ = 0;
    bool whole_ = false;
};

bool Copy::WriteSignals() {
    for (int i = 0; i < reader_.GetSignalCount(); ++i) {
        if (!WriteSignal(reader_.GetSignalHandle(i), -1, i)) {
            return false;
        }
    }
    std::sort(leaves_.begin(), leaves_.end());
    leaves_.erase(std::unique(leaves_.begin(), leaves_.end()), leaves_.end());
    TellInterest();
    return true;
}

bool Copy::WriteSignal(int handle, int parent, int index) {
    std::pair<bool, int> members;
    if (!WritePlace(handle, parent, index, members)) {
        return false;
    }
    const auto [composite, count] = members;
    for (int i = 0; composite && i < count; ++i) {
        if (!WriteSignal(reader_.GetSubSignalHandle(handle, i), handle, i)) {
            return false;
        }
    }
    return true;
}

// A top-level signal that is not wanted reports no members, so that nothing below it is written.
bool Copy::WritePlace(int handle, int parent, int index, std::pair<bool, int>& members) {
    auto& [composite, count] = members;
    int mode = 0;
    std::int64_t latest = 0;
    CString name;
    reader_.GetSignalInfo(handle, composite, count, name, mode, latest);
    if (parent == -1 && options_.takes && !options_.takes(name, handle)) {
        members = {};
        return true;
    }
    latest = std::min(latest, end_);
    if (!composite) {
        leaves_.push_back(handle);
        return writer_.WriteScalarSignal(handle, name, parent, index, mode, &latest) &&
               WriteText(handle);
    }
    return writer_.WriteCompositeSignal(handle, static_cast<std::uint32_t>(count), name, parent,
                                        index, mode, &latest) &&
           WriteText(handle);
}

bool Copy::WriteText(int handle) {
    const char* const type = reader_.GetTypeString(handle);
    if (type != nullptr && *type != '\0' && !writer_.WriteTypeInfo(handle, type)) {
        return false;
    }
    return std::all_of(kKeptProperties.begin(), kKeptProperties.end(), [&](const char* key) {
        const char* const value = reader_.GetSignalProperty(handle, key);
        return value == nullptr || writer_.WriteProperty(handle, key, value);
    });
}

void Copy::TellInterest() {
    SignalReader* const own = OwnReader(&reader_);
    if (own != nullptr && options_.takes) {
        own->SetInterest(leaves_);
    }
}

bool Copy::WriteEvents() {
    if (!reader_.Seek(&options_.start)) {
        if (*LastStreamError() == '\0') {
            SetError(file_name_, "the recording cannot be read");
        }
        return true;
    }
    if (!WriteStart()) {
        return false;
    }
    for (int handle = reader_.Next(); handle != -1; handle = reader_.Next()) {
        const std::int64_t time = *reader_.GetCurrentTime();
        if (time > end_) {
            whole_ = true;
            return true;
        }
        if (!WriteNext(handle, time)) {
            return false;
        }
    }
    whole_ = *LastStreamError() == '\0';
    return true;
}

// The values at the start, which come from events before it.
bool Copy::WriteStart() {
    return options_.start <= 0 || std::all_of(leaves_.begin(), leaves_.end(), [&](int handle) {
               Value value;
               return !reader_.GetCachedValue(handle, value.bytes.data()) ||
                      Write(handle, options_.start, value);
           });
}

bool Copy::WriteNext(int handle, std::int64_t time) {
    if (!std::binary_search(leaves_.begin(), leaves_.end(), handle)) {
        return true;
    }
    Value value;
    reader_.ReadValue(value.bytes.data());
    return Write(handle, time, value);
}

bool Copy::Write(int handle, std::int64_t time, const Value& value) {
    if (!writer_.WriteEvent(handle, &time, value.bytes.data(),
                            static_cast<unsigned>(value.bytes.size()))) {
        return false;
    }
    if (++written_ % kReportEvery == 0 && options_.progress && !options_.progress(time)) {
        SetError(file_name_, "the writing was cancelled");
        return false;
    }
    return true;
}

}  // namespace

bool WriteEventFile(stremo::IEventsStreamRead& reader, platform::Files& files,
                    const std::string& file_name, const EventFileOptions& options) {
    auto created = files.Create(file_name);
    if (created.file == nullptr) {
        SetError(file_name, created.failure);
        return false;
    }
    const auto writer = MakeEventFileWriter(file_name, std::move(created.file));
    Copy copy(reader, *writer, file_name, options);
    return copy.WriteSignals() && copy.WriteEvents() && writer->Close() && copy.IsWhole();
}

}  // namespace corv::recording

namespace corv {

bool WriteEventFile(stremo::IEventsStreamRead& reader, const char* file_name,
                    const EventFileOptions& options) noexcept {
    const char* const name = file_name != nullptr ? file_name : "";
    bool written = false;
    recording::ClearError();
    const bool done = platform::Done([&] {
        written = recording::WriteEventFile(reader, platform::SystemFiles(), name, options);
    });
    if (!done) {
        recording::SetError(name, "out of memory");
    }
    return done && written;
}

}  // namespace corv
