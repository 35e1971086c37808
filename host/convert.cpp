#include "host/convert.h"

#include <algorithm>
#include <array>
#include <limits>
#include <memory>
#include <stdexcept>

#include "corv/stremo/events_stream_write.h"
#include "corv/stremo/stream_details.h"
#include "corv/stremo/stream_error.h"
#include "corv/stremo/vcd_writer.h"
#include "host/selected_reader.h"

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
    Copy(SelectedReader& reader, IEventsStreamWrite& writer, const ConvertOptions& options)
        : reader_(reader),
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
        const std::vector<int>& leaves = reader_.leaves();
        for (int handle = reader_.Next(); handle != -1; handle = reader_.Next()) {
            const std::int64_t time = *reader_.GetCurrentTime();
            if (time > end_) {
                return true;
            }
            if (std::binary_search(leaves.begin(), leaves.end(), handle)) {
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
        for (const int handle : reader_.leaves()) {
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

    SelectedReader& reader_;
    IEventsStreamWrite& writer_;
    const ConvertOptions& options_;
    const std::int64_t end_;
    std::uint64_t written_ = 0;
};

SelectedReader Select(const Recording& recording, const std::vector<NamedSignal>& signals) {
    SelectedReader reader(recording, signals);
    SelectStreamSignals(recording.Reader(), reader.leaves().data(),
                        static_cast<int>(reader.leaves().size()));
    return reader;
}

}  // namespace

void WriteEventFile(const Recording& recording, const std::vector<NamedSignal>& signals,
                    const std::string& file_name, const ConvertOptions& options) {
    SelectedReader reader = Select(recording, signals);
    const std::unique_ptr<IEventsStreamWrite> writer(stremo::CreateStreamWrite(file_name.c_str()));
    if (!writer) {
        throw std::runtime_error(LastStreamError());
    }
    Copy copy(reader, *writer, options);
    copy.WriteSignals();
    const std::string problem = copy.WriteEvents() ? "" : recording.Problem();
    if (!writer->Close()) {
        throw std::runtime_error(LastStreamError());
    }
    if (!problem.empty()) {
        throw std::runtime_error(problem);
    }
}

void WriteVcdFile(const Recording& recording, const std::vector<NamedSignal>& signals,
                  const std::string& file_name, const ConvertOptions& options) {
    SelectedReader reader = Select(recording, signals);
    VcdOptions vcd;
    vcd.four_state = options.four_state;
    vcd.start = options.start;
    vcd.end = options.end.value_or(-1);
    if (options.progress) {
        vcd.progress = [&](std::int64_t time) {
            options.progress(time);
            return true;
        };
    }
    if (!WriteVcd(reader, file_name.c_str(), vcd)) {
        throw std::runtime_error(recording.Problem());
    }
}

}  // namespace corv::host
