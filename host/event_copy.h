#pragma once

#include <string>
#include <vector>

#include "corv/stremo/events_stream_read.h"
#include "host/convert.h"

namespace corv::host {

// Writes the signals of a reader, with the events of `leaves` (handles in order), to an event file.
// Returns false, with the file closed, if the reader stops before its end. Throws
// std::runtime_error if the file cannot be written.
bool CopyToEventFile(stremo::IEventsStreamRead& reader, const std::vector<int>& leaves,
                     const std::string& file_name, const ConvertOptions& options);

}  // namespace corv::host
