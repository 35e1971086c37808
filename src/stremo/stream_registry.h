#pragma once

#include <string_view>

namespace corv::recording {

// Whether RegisterStream knows the name. Such a name stands for no file.
bool IsRegisteredStream(std::string_view name) noexcept;

// Forgets all registered names, for the library's end.
void ResetStreams() noexcept;

}  // namespace corv::recording
