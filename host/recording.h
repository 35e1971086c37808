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

    // Takes over the units of a physical type, which signals don't take from their recording
    // themselves, for the leaves of a signal.
    void TakeUnits(ISignal& signal) const;

    // Fills the waves of the signals' leaves with their events in a window, the end included; when
    // these have more than `most` different times, with those of somewhat more than the first ones.
    // The value that a leaf brings into the window becomes an event of the last picosecond before
    // it.
    void Load(const std::vector<ISignal*>& signals, TimeWindow window,
              std::size_t most = kAllTimes) const;

    // The same with no more events than a drawing on the grid can show: of the changes of a leaf in
    // one column the first two and the last.
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
