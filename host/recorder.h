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

// Writes what sources do to a file, event by event, so that memory does not grow with their number.
// Types that are not given are inferred from the values.
//
// Throws std::runtime_error, with a sentence, if a value is not of its type or the file cannot be
// written.
void RecordSources(std::vector<SourceSignal> signals, const std::string& file_name,
                   const RecordOptions& options);

// Estimates how many events a source has in a window, from its first ones.
double EstimateEvents(Source& source, TimeWindow window);

}  // namespace corv::host
