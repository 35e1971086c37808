#pragma once

#include "corv/platform/export.h"

namespace corv {

// Whether the event files that custom formulas named are deleted when the library is detached: true
// at first. They are temporary files of a host's run there; a host that lets its users name files
// of theirs switches deletion off or registers them (corv/stremo/stream_registry.h).
CORV_API void SetEventFileDeletion(bool enabled) noexcept;

}  // namespace corv
