#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "corv/stremo/events_stream_read.h"
#include "corv/util/time_text.h"

namespace corv::host {

// How a recording is opened, as far as the file itself does not decide.
struct OpenOptions {
    std::optional<TimeUnit> time_unit;  // of GHW files
    // Called now and then while a packed file is unpacked for the first time, with the fraction
    // done, 0 to 1.
    std::function<void(double)> progress;
};

struct OpenedStream {
    std::unique_ptr<stremo::IEventsStreamRead> reader;
    std::vector<std::string> notes;  // what went wrong before the reader had it
};

// Opens a recording of any format. A recording packed with gzip is unpacked while it is read. "-"
// is standard input; standard input and pipes are first read to their end and kept in memory,
// packed.
//
// Throws std::runtime_error, with a sentence.
OpenedStream OpenStream(const std::string& file_name, const OpenOptions& options = {});

}  // namespace corv::host
