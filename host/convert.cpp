#include "host/convert.h"

#include <stdexcept>

#include "corv/stremo/streams.h"
#include "corv/stremo/vcd_writer.h"
#include "host/event_copy.h"
#include "host/selected_reader.h"

namespace corv::host {
namespace {

SelectedReader Select(const Recording& recording, const std::vector<NamedSignal>& signals) {
    SelectedReader reader(recording, signals);
    SelectStreamSignals(recording.Reader(), reader.leaves());
    return reader;
}

}  // namespace

void WriteEventFile(const Recording& recording, const std::vector<NamedSignal>& signals,
                    const std::string& file_name, const ConvertOptions& options) {
    SelectedReader reader = Select(recording, signals);
    if (!CopyToEventFile(reader, reader.leaves(), file_name, options)) {
        throw std::runtime_error(recording.Problem());
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
