#pragma once

#include "corv/platform/export.h"

namespace corv {

// Why the last recording could not be opened, made, read or written: one sentence without a full
// stop, with the file's name and, where there is one, the place in it ("run.evt: byte 4096: the
// block does not match its checksum"). Empty when nothing has failed. Each thread has its own;
// valid until the thread's next operation on a recording.
CORV_API const char* LastStreamError() noexcept;

}  // namespace corv
