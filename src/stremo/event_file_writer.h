#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "corv/stremo/events_stream_write.h"
#include "platform/files.h"

namespace corv::recording {

// A writer of event files to an output that was opened under that name. The number of events in a
// block as BlockBuilder takes it.
std::unique_ptr<IEventsStreamWrite> MakeEventFileWriter(
    std::string file_name, std::unique_ptr<platform::FileOutput> output,
    std::uint64_t block_events = 0);

}  // namespace corv::recording
