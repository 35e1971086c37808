#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "host/driven_signal.h"
#include "host/open_stream.h"
#include "host/source.h"

namespace corv::host {

// A recorded signal as a source of events, through custom stimuli. They are made from the open
// recording and not from a name, so that the user's file is neither opened again nor deleted, and
// that no name is taken for another signal's.
struct Replay {
    std::string name;  // the signal's full name, as shown
    std::unique_ptr<Source> source;
    Shape shape;
    std::string type;
};

// Events come `shift` picoseconds later than in the recording, those before 0 not at all.
//
// Throws std::runtime_error, with a sentence, when the recording can't be opened, has no such
// signal or the name is a pattern of several.
Replay MakeReplay(const std::string& file_name, const std::string& signal, std::int64_t shift,
                  const OpenOptions& options = {});

}  // namespace corv::host
