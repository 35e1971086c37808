#pragma once

#include <cstddef>
#include <cstdint>

#include "host/source.h"
#include "host/time_grid.h"
#include "host/trace.h"

// Turns a source into a trace by asking it for one event after another.
namespace corv::host {

// Records every event from window.start through window.end (the end included), at most `max` of
// them.
Trace RecordEvents(Source& source, TimeWindow window, std::size_t max);

// Records what a drawing on the grid can show: all events, except that in a column with many events
// only some are asked for and the rest of the column is marked as crowded. So a drawing takes time
// in proportion to its columns, however many events are in the window.
Trace RecordForGrid(Source& source, const TimeGrid& grid);

}  // namespace corv::host
