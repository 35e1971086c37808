#pragma once

#include <cstdint>
#include <functional>

#include "corv/platform/export.h"

namespace corv {

// Takes how much of a file has been read through, in bytes, and how long it is. The last call of a
// reading through has both equal.
using StreamProgress = std::function<void(std::uint64_t done, std::uint64_t all)>;

// Sets what is called now and then, every few megabytes, while a large recording of another format
// is read through, which happens when it is opened or first asked about events. An empty function
// ends that, as detaching the library does. Exceptions of the function are ignored.
CORV_API void SetStreamProgress(StreamProgress progress) noexcept;

}  // namespace corv
