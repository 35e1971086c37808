#pragma once

#include <cstdint>

namespace corv::recording {

// Reports to the host's function, if there is one, how much of a file has been read.
void TellProgress(std::uint64_t done, std::uint64_t all) noexcept;

// Forgets the host's function when the library is detached.
void ResetProgress() noexcept;

}  // namespace corv::recording
