#pragma once

#include <cstddef>
#include <cstdint>

#include "host/source.h"
#include "host/time_grid.h"
#include "host/trace.h"

// Turns a source into a trace by asking it, event by event, for the next event and its value.
namespace corv::host {

// Every event from window.start through window.end (the end included), at most `max` of them.
Trace RecordEvents(Source& source, TimeWindow window, std::size_t max);

// What a drawing on the grid can show: all events, except that of a column with many only some
// are asked for and the rest of the column is marked as crowded. So a drawing takes time in
// proportion to its columns, however many events lie in the window.
Trace RecordForGrid(Source& source, const TimeGrid& grid);

}  // namespace corv::host
