#pragma once

#include "corv/platform/export.h"

namespace corv {

// Attaching makes the library ready: it asks the host's base library for the hierarchy separator.
// Detaching deletes the event files that custom formulas named (corv/stimulus/event_files.h) and
// gives back what the library holds for itself. The shared library does both when it is
// loaded and unloaded; hosts of the static one call them, in pairs. Only the outermost pair counts.
CORV_API void Attach() noexcept;
CORV_API void Detach() noexcept;

}  // namespace corv
