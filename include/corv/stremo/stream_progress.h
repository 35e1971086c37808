#pragma once

#include <cstdint>
#include <functional>

#include "corv/platform/export.h"

namespace corv {

// Receives how many bytes of a file have been read, and how many there are. In the last call for a
// file both are equal.
using StreamProgress = std::function<void(std::uint64_t done, std::uint64_t all)>;

// Sets a function that is called every few megabytes while a large recording of another format is
// read from beginning to end, which happens when it is opened or first asked for events. An empty
// function, or detaching the library, ends the calls. Exceptions of the function are ignored.
CORV_API void SetStreamProgress(StreamProgress progress) noexcept;

}  // namespace corv
