#pragma once

#include <string>

#include "corv/stremo/event_file_writer.h"
#include "platform/files.h"

namespace corv::recording {

// corv::WriteEventFile with files of the caller's choice. Throws std::bad_alloc and what the
// options' functions throw.
bool WriteEventFile(stremo::IEventsStreamRead& reader, platform::Files& files,
                    const std::string& file_name, const EventFileOptions& options);

}  // namespace corv::recording
