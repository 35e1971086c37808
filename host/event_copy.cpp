#include "host/event_copy.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <memory>
#include <stdexcept>

#include "corv/stremo/events_stream_write.h"
#include "corv/stremo/streams.h"

namespace corv::host {
namespace {

constexpr std::array<const char*, 3> kProperties{"Stimulator", "VBus", "Units"};
constexpr std::uint64_t kReportEvery = 1U << 16;  // events

struct Value {
    std::array<unsigned char, 16> bytes{};
};

// Copies a reader's signals and events to an event file.
class Copy {
public:
    Copy(stremo::IEventsStreamRead& reader, const std::vector<int>& leaves,
         IEventsStreamWrite& writer, const ConvertOptions& options)
        : reader_(reader),
          leaves_(leaves),
          writer_(writer),
          options_(options),
          end_(options.end.value_or(std::numeric_limits<std::int64_t>::max())) {}

    void WriteSignals() {
        for (int i = 0; i < reader_.GetSignalCount(); ++i) {
            WriteSignal(reader_.GetSignalHandle(i), -1, i);
        }
    }

    // False when the recording can't be read on.
    bool WriteEvents() {
        const std::int64_t start = options_.start;
        if (!reader_.Seek(&start)) {
            return false;
        }
        WriteStart(start);
        for (int handle = reader_.Next(); handle != -1; handle = reader_.Next()) {
            const std::int64_t time = *reader_.GetCurrentTime();
            if (time > end_) {
                return true;
            }
            if (std::binary_search(leaves_.begin(), leaves_.end(), handle)) {
                Value value;
                reader_.ReadValue(value.bytes.data());
                Write(handle, time, value);
            }
        }
        return *LastStreamError() == '\0';
    }

private:
    static void Check(bool written) {
        if (!written) {
            throw std::runtime_error(LastStreamError());
        }
    }

    void WriteSignal(int handle, int parent, int index) {
        bool composite = false;
        int count = 0;
        int mode = 0;
        std::int64_t latest = 0;
        CString name;
        reader_.GetSignalInfo(handle, composite, count, name, mode, latest);
        latest = std::min(latest, end_);
        Check(composite ? writer_.WriteCompositeSignal(handle, static_cast<unsigned>(count), name,
                                                       parent, index, mode, &latest)
                        : writer_.WriteScalarSignal(handle, name, parent, index, mode, &latest));
        if (const char* const type = reader_.GetTypeString(handle); type != nullptr && *type) {
            Check(writer_.WriteTypeInfo(handle, type));
        }
        for (const char* const key : kProperties) {
            if (const char* const value = reader_.GetSignalProperty(handle, key)) {
                Check(writer_.WriteProperty(handle, key, value));
            }
        }
        for (int i = 0; composite && i < count; ++i) {
            WriteSignal(reader_.GetSubSignalHandle(handle, i), handle, i);
        }
    }

    // The values that the signals bring into the window.
    void WriteStart(std::int64_t start) {
        for (const int handle : leaves_) {
            Value value;
            if (start > 0 && reader_.GetCachedValue(handle, value.bytes.data())) {
                Write(handle, start, value);
            }
        }
    }

    void Write(int handle, std::int64_t time, const Value& value) {
        Check(writer_.WriteEvent(handle, &time, value.bytes.data(),
                                 static_cast<unsigned>(value.bytes.size())));
        if (++written_ % kReportEvery == 0 && options_.progress) {
            options_.progress(time);
        }
    }

    stremo::IEventsStreamRead& reader_;
    const std::vector<int>& leaves_;
    IEventsStreamWrite& writer_;
    const ConvertOptions& options_;
    const std::int64_t end_;
    std::uint64_t written_ = 0;
};

}  // namespace

bool CopyToEventFile(stremo::IEventsStreamRead& reader, const std::vector<int>& leaves,
                     const std::string& file_name, const ConvertOptions& options) {
    const std::unique_ptr<IEventsStreamWrite> writer(stremo::CreateStreamWrite(file_name.c_str()));
    if (!writer) {
        throw std::runtime_error(LastStreamError());
    }
    Copy copy(reader, leaves, *writer, options);
    copy.WriteSignals();
    const bool whole = copy.WriteEvents();
    if (!writer->Close()) {
        throw std::runtime_error(LastStreamError());
    }
    return whole;
}

}  // namespace corv::host
