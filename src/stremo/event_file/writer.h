#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "corv/stremo/events_stream_write.h"
#include "platform/files.h"

namespace corv::recording {

// Returns a writer of event files to an output that was opened under that name. The number of
// changes per block is passed to BlockBuilder.
std::unique_ptr<IEventsStreamWrite> MakeEventFileWriter(
    std::string file_name, std::unique_ptr<platform::FileOutput> output,
    std::size_t block_changes = 0);

}  // namespace corv::recording
