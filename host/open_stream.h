#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "corv/stremo/events_stream_read.h"

namespace corv::host {

// How a recording is opened, where the file itself does not tell.
struct OpenOptions {
    std::optional<unsigned> time_unit;  // of GHW files: 0 fs to 7 hr (corv/util/time_units.h)
    // Called now and then while a packed file is gone through, with the part that is done, 0 to 1.
    std::function<void(double)> progress;
};

struct OpenedStream {
    std::unique_ptr<stremo::IEventsStreamRead> reader;
    std::vector<std::string> notes;  // what befell before the reader had it
};

// Opens a recording of any format. One that gzip has packed is unpacked as it is read. "-" is the
// standard input; that and pipes are read to their end first and kept in memory, packed.
//
// Throws std::runtime_error, with a sentence.
OpenedStream OpenStream(const std::string& file_name, const OpenOptions& options = {});

}  // namespace corv::host
