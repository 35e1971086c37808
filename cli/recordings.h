#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/formulas.h"
#include "host/recording.h"
#include "host/signal_name.h"
#include "host/time_grid.h"

namespace corv::cli {

// Opens a recording and shows the progress of reading it from then on. `time_unit` is the unit of a
// GHW file's times if the file does not state it. Throws Failure.
std::unique_ptr<host::Recording> OpenRecording(const std::string& file_name,
                                               std::optional<TimeUnit> time_unit = {});

// Returns the signals that match the patterns, each once; without patterns, those of the top level.
// Throws Failure for a pattern that matches none.
std::vector<host::NamedSignal> SelectNamed(const host::Recording& recording,
                                           const std::vector<std::string>& patterns);

// Returns a sentence about a name or pattern that matches no signal, with a suggestion.
std::string UnknownSignal(const host::Recording& recording, const std::string& name);

// What a command shows: signals of a recording, formulas and replayed signals.
class Shown {
public:
    // Throws Failure, also if there is nothing to show.
    explicit Shown(const FormulaOptions& options, BusStyle listed = BusStyle::Literal);

    std::vector<std::string> Names() const;
    host::TimeWindow Window() const;
    // Returns the time where the recording ends; nothing if none is shown or it has no events.
    std::optional<std::int64_t> RecordingEnd() const;
    // Returns what each signal does in a window: its events, at most `max` of each. What was
    // repaired or lost in the recording is reported on standard error, once; mere assumptions about
    // an intact recording are not.
    std::vector<host::Trace> Events(host::TimeWindow window, std::size_t max) const;
    // Returns the same, as far as a drawing on the grid can show it.
    std::vector<host::Trace> ForGrid(const host::TimeGrid& grid) const;

private:
    void TellNotes() const;
    std::vector<ISignal*> Signals() const;
    // Returns the traces of the recording's signals; their events must have been loaded.
    std::vector<host::Trace> Recorded(host::TimeWindow window, BusStyle style,
                                      std::size_t most) const;

    const FormulaOptions& options_;
    BusStyle listed_;  // how vectors are written in lists of events
    std::unique_ptr<host::Recording> recording_;
    std::vector<host::NamedSignal> selected_;
    std::vector<NamedSource> sources_;
    mutable bool notes_told_ = false;
};

}  // namespace corv::cli
