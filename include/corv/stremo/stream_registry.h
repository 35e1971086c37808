#pragma once

#include <functional>

#include "corv/platform/export.h"
#include "corv/stremo/events_stream_read.h"

namespace stremo {

// Registers a name such as "corv:replay:1" for recordings that the host provides: CreateStreamRead
// and custom formulas with that name then call the factory, which returns a reader that the caller
// owns, or null. Case does not matter. A registered name does not mean a file and is never
// remembered for deletion. Returns false for an empty name, an empty factory, a name that is
// already taken, and if out of memory.
CORV_API bool RegisterStream(const char* name,
                             std::function<IEventsStreamRead*()> factory) noexcept;

// Removes a name. Returns false if it is not registered. Open readers stay open.
CORV_API bool UnregisterStream(const char* name) noexcept;

}  // namespace stremo
