#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "corv/containers/signal_container.h"
#include "corv/frame/com_ptr.h"
#include "corv/signals/signal.h"
#include "corv/stremo/events_stream_read.h"
#include "host/open_stream.h"
#include "host/time_grid.h"
#include "host/trace.h"

namespace corv::host {

// A recording that is open: its signals, whose waves are filled on demand.
//
// Throws std::runtime_error, with a sentence, if the recording cannot be read.
class Recording {
public:
    explicit Recording(const std::string& file_name, const OpenOptions& options = {});

    stremo::IEventsStreamRead& Reader() const { return *stream_.reader; }
    ISignalContainer& Signals() const { return *signals_; }

    // What was repaired, assumed or lost so far, one sentence each.
    std::vector<std::string> Notes() const;

    // Why the recording cannot be read any further; empty if it can.
    std::string Problem() const;

    // The latest time of all signals, in picoseconds; 0 without events.
    std::int64_t LatestTime() const;

    // Takes over the units of physical types, which signals do not load from their recording
    // themselves, for the leaves of a signal.
    void TakeUnits(ISignal& signal) const;

    // Fills the waves of the signals' leaves with their events in a window, the end included. If
    // these have more than `most` different times, only somewhat more than the first `most` are
    // loaded. The value that a leaf has before the window becomes an event at the last picosecond
    // before it.
    void Load(const std::vector<ISignal*>& signals, TimeWindow window,
              std::size_t most = kAllTimes) const;

    // The same with no more events than a drawing on the grid can show: the first two changes and
    // the last one of a leaf in each column.
    void LoadForGrid(const std::vector<ISignal*>& signals, const TimeGrid& grid) const;

    static constexpr std::size_t kAllTimes = std::numeric_limits<std::size_t>::max() - 1;

private:
    class Waves;
    void LoadBefore(Waves& waves, std::int64_t start) const;
    void CheckLoaded(const Waves& waves) const;

    std::string file_name_;
    OpenedStream stream_;
    frame::ComPtr<ISignalContainer> signals_;
};

}  // namespace corv::host
