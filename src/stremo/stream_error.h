#pragma once

#include <cstdint>
#include <string_view>

#include "corv/stremo/stream_error.h"

// The text of corv::LastStreamError. Each thread has its own, in static memory, so that reporting a
// lack of memory needs none.
namespace corv::recording {

// Set the error to "FILE: WHAT" or "FILE: byte 4096: WHAT". WHAT has no full stop. A file name that
// is too long loses its beginning.
void SetError(std::string_view file, std::string_view what) noexcept;
void SetError(std::string_view file, std::uint64_t offset, std::string_view what) noexcept;

// Says that nothing has failed.
void ClearError() noexcept;

}  // namespace corv::recording
