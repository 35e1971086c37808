#pragma once

#include <array>
#include <span>

namespace corv::recording {

// The properties of signals that recordings keep in addition to place, type, mode and latest time.
// Signals themselves take over the first two only; whoever needs the units of a physical type asks
// the reader.
inline constexpr std::array<const char*, 3> kKeptProperties{"Stimulator", "VBus", "Units"};
inline constexpr std::span<const char* const> kSignalProperties{kKeptProperties.data(), 2};

}  // namespace corv::recording
