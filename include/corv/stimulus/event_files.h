#pragma once

#include "corv/platform/export.h"

namespace corv {

// Whether the event files that custom formulas named are deleted when the library is detached: true
// at first. A file that was there when it was named is deleted under the name that was found then,
// one that was made later as recordings are found, without regard to case; folders stay. They are
// temporary files of a host's run; a host that lets its users name files of theirs switches
// deletion off or registers them (corv/stremo/stream_registry.h).
CORV_API void SetEventFileDeletion(bool enabled) noexcept;

}  // namespace corv
