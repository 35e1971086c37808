#pragma once

#include "corv/platform/export.h"

namespace corv {

// Returns why the last operation could not open, create, read or write a recording: one sentence
// without a full stop, with the name of the file and, where there is one, the place in it
// ("run.evt: byte 4096: the block does not match its checksum"). It is empty if nothing has failed.
// Each thread has its own; the text is valid until the thread's next operation on a recording.
CORV_API const char* LastStreamError() noexcept;

}  // namespace corv
