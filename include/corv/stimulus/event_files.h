#pragma once

#include "corv/platform/export.h"

namespace corv {

// Sets whether the event files that custom formulas have named are deleted when the library is
// detached; initially they are. A file that existed when it was named is deleted under the name
// that was found then; a file made later is found as recordings are, without regard to case.
// Folders stay. Event files are temporary files of a host's run; a host that lets its users name
// files of their own should switch deletion off or register these files
// (corv/stremo/stream_registry.h).
CORV_API void SetEventFileDeletion(bool enabled) noexcept;

}  // namespace corv
