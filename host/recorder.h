#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "host/source_reader.h"

namespace corv::host {

struct RecordOptions {
    TimeWindow window;                                // the end included
    bool vcd = false;                                 // a value change dump; else an event file
    std::function<void(std::int64_t time)> progress;  // called now and then with the time reached
};

// Writes what sources do to a file, event by event: memory does not grow with their number. Types
// that are not given are told by the values.
//
// Throws std::runtime_error, with a sentence, when a value is none of its type or the file can't be
// written.
void RecordSources(std::vector<SourceSignal> signals, const std::string& file_name,
                   const RecordOptions& options);

// About how many events a source has in a window, from those with which it begins.
double EstimateEvents(Source& source, TimeWindow window);

}  // namespace corv::host
