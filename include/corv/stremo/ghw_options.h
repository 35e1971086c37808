#pragma once

#include "corv/platform/export.h"
#include "corv/stremo/events_stream_read.h"

namespace corv {

// Opens a GHW recording as stremo::CreateStreamRead does, but with a given unit of its times: 0 fs
// to 7 hr (corv/util/time_units.h). A GHW file does not state the unit. In most files it follows
// from the units of the type time; otherwise femtoseconds are assumed, which is wrong for a
// simulation with a coarser resolution. Any other number leaves the unit to the file.
//
// Returns null for a file of another format as well. Names of registered streams are not looked up.
CORV_API stremo::IEventsStreamRead* OpenGhwRecording(const char* file_name, int time_unit) noexcept;

}  // namespace corv
