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

// Opens a recording, of a GHW file with times in a certain unit; throws Failure. From then on the
// progress of what is read through is shown.
std::unique_ptr<host::Recording> OpenRecording(const std::string& file_name,
                                               std::optional<unsigned> time_unit = {});

// The signals that the patterns name, each once, the top-level ones without any; throws Failure for
// a pattern that names none.
std::vector<host::NamedSignal> SelectNamed(const host::Recording& recording,
                                           const std::vector<std::string>& patterns);

// A sentence about a name or pattern that stands for no signal, with what would do.
std::string UnknownSignal(const host::Recording& recording, const std::string& name);

// What a command shows: signals of a recording, and what formulas and replayed signals do.
class Shown {
public:
    // Throws Failure, also when there is nothing to be shown.
    explicit Shown(const FormulaOptions& options, BusStyle listed = BusStyle::Literal);

    std::vector<std::string> Names() const;
    host::TimeWindow Window() const;
    // Where the recording that is shown ends; nothing without one, and when it has no events.
    std::optional<std::int64_t> RecordingEnd() const;
    // What each does in a window: every event, at most `max` of each. What was repaired or lost
    // in the recording is told on standard error, once; what was assumed of a whole one is not.
    std::vector<host::Trace> Events(host::TimeWindow window, std::size_t max) const;
    // The same as far as a drawing on the grid can show it.
    std::vector<host::Trace> ForGrid(const host::TimeGrid& grid) const;

private:
    void TellNotes() const;
    std::vector<ISignal*> Signals() const;
    // Of what has been loaded.
    std::vector<host::Trace> Recorded(host::TimeWindow window, BusStyle style,
                                      std::size_t most) const;

    const FormulaOptions& options_;
    BusStyle listed_;  // of vectors in lists of events
    std::unique_ptr<host::Recording> recording_;
    std::vector<host::NamedSignal> selected_;
    std::vector<NamedSource> sources_;
    mutable bool notes_told_ = false;
};

}  // namespace corv::cli
