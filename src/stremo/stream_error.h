#pragma once

#include <cstdint>
#include <string_view>

#include "corv/stremo/stream_error.h"

// What corv::LastStreamError tells. Kept for each thread, in place: to say that memory has run out
// takes none.
namespace corv::recording {

// "FILE: WHAT", "FILE: byte 4096: WHAT". WHAT has no full stop. A file name that is too long loses
// its beginning.
void SetError(std::string_view file, std::string_view what) noexcept;
void SetError(std::string_view file, std::uint64_t offset, std::string_view what) noexcept;

// Nothing has failed.
void ClearError() noexcept;

}  // namespace corv::recording
