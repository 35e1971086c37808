#pragma once

#include <string>
#include <vector>

#include "corv/stremo/events_stream_read.h"
#include "host/convert.h"

namespace corv::host {

// Writes the signals of a reader, with the events of `leaves` (handles in order), to an event file.
// False, with the file closed, when the reader stops before its end. Throws std::runtime_error when
// the file can't be written.
bool CopyToEventFile(stremo::IEventsStreamRead& reader, const std::vector<int>& leaves,
                     const std::string& file_name, const ConvertOptions& options);

}  // namespace corv::host
