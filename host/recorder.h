#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/driven_signal.h"

namespace corv::host {

// Writes signals with the events of their waves, up to and including `end`, to an event file. The
// names are those of the top-level signals.
//
// Throws std::runtime_error, with a sentence, when the file can't be written.
void WriteRecording(const std::string& file_name,
                    const std::vector<std::pair<std::string, ISignal*>>& signals, std::int64_t end);

}  // namespace corv::host
