#pragma once

#include <cstdint>

namespace corv::recording {

// Tells the host's function, if there is one, how much of a file has been read through.
void TellProgress(std::uint64_t done, std::uint64_t all) noexcept;

// Forgets the host's function, for the library's end.
void ResetProgress() noexcept;

}  // namespace corv::recording
