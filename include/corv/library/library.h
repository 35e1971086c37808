#pragma once

#include "corv/platform/export.h"

namespace corv {

// Attaching prepares the library: it asks the host's base library for the hierarchy separator.
// Detaching deletes the event files that custom formulas have named (corv/stimulus/event_files.h)
// and releases the memory that the library keeps for itself. The shared library does both by itself
// when it is loaded and unloaded; hosts of the static library call them in pairs, of which only the
// outermost counts.
CORV_API void Attach() noexcept;
CORV_API void Detach() noexcept;

}  // namespace corv
