#pragma once

namespace corv::platform {

// Returns the library's text for an identifier, null if there is none.
const char* FindString(unsigned id) noexcept;

}  // namespace corv::platform
