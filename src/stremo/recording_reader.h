#pragma once

#include <memory>

#include "stremo/recording.h"
#include "stremo/signal_cursor.h"

namespace corv::recording {

// The reader of every recording.
//
// The position in the recording is a block and an event in it. Seek finds the block by bisection,
// and the place in it by another one; the block's events are put in order only when Next needs
// them. A cached value is the one at the block's start with the changes of its channel up to the
// position applied.
std::unique_ptr<SignalReader> MakeReader(std::unique_ptr<Recording> recording);

}  // namespace corv::recording
