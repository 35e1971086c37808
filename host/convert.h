#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/recording.h"
#include "host/signal_name.h"

namespace corv::host {

// What of a recording is written, and how.
struct ConvertOptions {
    std::int64_t start = 0;                           // picoseconds
    std::optional<std::int64_t> end;                  // included; none: the recording's
    bool four_state = false;                          // VCD files only: the four values of Verilog
    std::function<void(std::int64_t time)> progress;  // called now and then with the time reached
};

// Writes signals of a recording to an event file: the values that they have at the window's start
// as events there, then their events. Times stay what they are.
//
// Throws std::runtime_error, with a sentence, when the recording can't be read or the file not
// written.
void WriteEventFile(const Recording& recording, const std::vector<NamedSignal>& signals,
                    const std::string& file_name, const ConvertOptions& options);

// The same as a value change dump.
void WriteVcdFile(const Recording& recording, const std::vector<NamedSignal>& signals,
                  const std::string& file_name, const ConvertOptions& options);

}  // namespace corv::host
