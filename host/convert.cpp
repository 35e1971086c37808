#include "host/convert.h"

#include <stdexcept>

#include "corv/stremo/event_file_writer.h"
#include "corv/stremo/streams.h"
#include "corv/stremo/vcd_writer.h"
#include "host/selected_reader.h"

namespace corv::host {
namespace {

// Selects the signals on the recording's reader: a SelectedReader is not the library's own.
SelectedReader Select(const Recording& recording, const std::vector<NamedSignal>& signals) {
    SelectedReader reader(recording, signals);
    SelectStreamSignals(recording.Reader(), reader.leaves());
    return reader;
}

// The options that both formats have.
template <class Options>
Options OptionsFor(const ConvertOptions& options) {
    Options written;
    written.start = options.start;
    written.end = options.end.value_or(-1);
    if (options.progress) {
        written.progress = [&options](std::int64_t time) {
            options.progress(time);
            return true;
        };
    }
    return written;
}

}  // namespace

void WriteEventFile(const Recording& recording, const std::vector<NamedSignal>& signals,
                    const std::string& file_name, const ConvertOptions& options) {
    SelectedReader reader = Select(recording, signals);
    const auto file = OptionsFor<EventFileOptions>(options);
    if (!corv::WriteEventFile(reader, file_name.c_str(), file)) {
        throw std::runtime_error(recording.Problem());
    }
}

void WriteVcdFile(const Recording& recording, const std::vector<NamedSignal>& signals,
                  const std::string& file_name, const ConvertOptions& options) {
    SelectedReader reader = Select(recording, signals);
    auto vcd = OptionsFor<VcdOptions>(options);
    vcd.four_state = options.four_state;
    if (!WriteVcd(reader, file_name.c_str(), vcd)) {
        throw std::runtime_error(recording.Problem());
    }
}

}  // namespace corv::host
