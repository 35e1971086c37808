#pragma once

namespace corv::platform {

// The library's text for an identifier, null when there is none.
const char* FindString(unsigned id) noexcept;

}  // namespace corv::platform
