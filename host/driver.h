#pragma once

#include <cstddef>
#include <cstdint>

#include "corv/stimulus/stimulus.h"
#include "host/time_grid.h"
#include "host/trace.h"

// Turns a stimulus into a trace by asking it, event by event, for the next event and its value.
namespace corv::host {

// Every event from window.start through window.end (the end included), at most `max` of them.
Trace RecordEvents(const CStimulus& stimulus, TimeWindow window, std::size_t max);

// What a drawing on the grid can show: all events, except that of a column with many only some
// are asked for and the rest of the column is marked as crowded. So a drawing takes time in
// proportion to its columns, however many events lie in the window.
Trace RecordForGrid(const CStimulus& stimulus, const TimeGrid& grid);

// A sensible end for a window that begins at `start`. For a stimulus that does not repeat: an
// eighth behind its last element; for one that does: two periods behind `start` or the first
// event, whichever is later, and in any case an eighth behind its last absolute element.
std::int64_t NaturalEnd(CStimulus& stimulus, std::int64_t start);

}  // namespace corv::host
