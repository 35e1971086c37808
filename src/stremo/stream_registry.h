#pragma once

#include <string_view>

namespace corv::recording {

// Returns whether the name is registered (RegisterStream). Such a name does not mean a file.
bool IsRegisteredStream(std::string_view name) noexcept;

// Forgets all registered names when the library is detached.
void ResetStreams() noexcept;

}  // namespace corv::recording
