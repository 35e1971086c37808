#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "corv/containers/signal_container.h"
#include "corv/frame/com_ptr.h"
#include "corv/signals/signal.h"
#include "corv/stremo/events_stream_read.h"
#include "host/open_stream.h"
#include "host/trace.h"

namespace corv::host {

// A recording that is open: its signals, whose waves are filled on demand.
//
// Throws std::runtime_error, with a sentence, when the recording can't be read.
class Recording {
public:
    explicit Recording(const std::string& file_name, const OpenOptions& options = {});

    stremo::IEventsStreamRead& Reader() const { return *stream_.reader; }
    ISignalContainer& Signals() const { return *signals_; }

    // What was repaired, guessed or lost so far, a sentence each.
    std::vector<std::string> Notes() const;

    // Why the recording can't be read on; empty when it can.
    std::string Problem() const;

    // The latest time of all signals, in picoseconds; 0 without any event.
    std::int64_t LatestTime() const;

    // Fills the waves of the signals' leaves with their events in a window, the end included. The
    // value that a leaf brings into the window becomes an event of the last picosecond before it.
    void Load(const std::vector<ISignal*>& signals, TimeWindow window) const;

private:
    std::string file_name_;
    OpenedStream stream_;
    frame::ComPtr<ISignalContainer> signals_;
};

}  // namespace corv::host
