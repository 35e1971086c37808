#pragma once

#include <cstdint>
#include <functional>

#include "corv/platform/export.h"
#include "corv/stremo/events_stream_read.h"

namespace corv {

// Options of WriteEventFile. Times are picoseconds.
struct EventFileOptions {
    // The part of the recording that is written: the values that the signals have at `start`, as
    // events at that time, and the events from there up to and including `end` (below 0: all of
    // them). Times do not change.
    std::int64_t start = 0;
    std::int64_t end = -1;

    // Decides which top-level signals are written, by name and handle. An empty function takes all.
    std::function<bool(const char* name, int handle)> takes;

    // Called now and then with the time that has been reached. Returning false stops the writing,
    // which then counts as failed.
    std::function<bool(std::int64_t time)> progress;
};

// Writes a recording as an event file, the library's own format, which opens at once however large
// it is: the signals with their handles, types, modes, latest times and the properties
// "Stimulator", "VBus" and "Units", then the events.
//
// The reader's position changes. If `takes` is given, the signals to be written are selected first
// on a reader of this library (SelectStreamSignals). Returns false if the file could not be
// written, if the recording could not be read to its end (the file is then complete as far as it
// was read), if `progress` stopped the writing, and if out of memory; corv::LastStreamError says
// why. No exception leaves it, not even one of the functions in the options.
CORV_API bool WriteEventFile(stremo::IEventsStreamRead& reader, const char* file_name,
                             const EventFileOptions& options = {}) noexcept;

}  // namespace corv
