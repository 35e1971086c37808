#pragma once

#include <string_view>

namespace corv::util {

// Returns the time unit that a misspelt one was most likely meant to be, empty if none is near.
std::string_view NearestUnit(std::string_view word) noexcept;

}  // namespace corv::util
