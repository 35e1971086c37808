#pragma once

#include "corv/platform/export.h"
#include "corv/stremo/events_stream_read.h"

namespace corv {

// Opens a GHW recording as stremo::CreateStreamRead does, with the unit that its times are in: 0 fs
// to 7 hr (corv/util/time_units.h). GHW files don't say it. It can be found in most, by the units
// of the type time; where that is missing femtoseconds are assumed, which is wrong for a simulation
// with a coarser resolution. Any other number leaves it to the file.
//
// Null for a file of another format as well; names of registered streams are not looked up.
CORV_API stremo::IEventsStreamRead* OpenGhwRecording(const char* file_name, int time_unit) noexcept;

}  // namespace corv
