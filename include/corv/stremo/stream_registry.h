#pragma once

#include <functional>

#include "corv/platform/export.h"
#include "corv/stremo/events_stream_read.h"

namespace stremo {

// Gives a name such as "corv:replay:1" to recordings of the host's making: CreateStreamRead of that
// name, and custom formulas, which name a recording, then call the factory (a reader that the
// caller owns, or null). Case does not matter. A registered name stands for no file and is never
// remembered for deletion. False for an empty name, no factory, a name that is taken, and when
// memory runs out.
CORV_API bool RegisterStream(const char* name,
                             std::function<IEventsStreamRead*()> factory) noexcept;

// Forgets a name. False when it is not registered. Readers that are open stay so.
CORV_API bool UnregisterStream(const char* name) noexcept;

}  // namespace stremo
