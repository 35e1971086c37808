#pragma once

#include <string_view>

namespace corv::stimulus {

// Returns the time unit that a misspelt one was most likely meant to be, empty if none is near.
std::string_view NearestUnit(std::string_view word) noexcept;

}  // namespace corv::stimulus
