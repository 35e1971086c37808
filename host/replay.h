#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "host/driven_signal.h"
#include "host/open_stream.h"
#include "host/source.h"

namespace corv::host {

// A recorded signal as a source of events, through custom stimuli. They are made from the open
// recording and not by name, so that the user's file is neither opened again nor deleted, and no
// name can be mistaken for that of another signal.
struct Replay {
    std::string name;  // the signal's full name, as shown
    std::unique_ptr<Source> source;
    Shape shape;
    std::string type;
};

// Events come `shift` picoseconds later than in the recording; those that would be before 0 are
// dropped.
//
// Throws std::runtime_error, with a sentence, if the recording cannot be opened or has no such
// signal, or if the name is a pattern that matches several.
Replay MakeReplay(const std::string& file_name, const std::string& signal, std::int64_t shift,
                  const OpenOptions& options = {});

}  // namespace corv::host
