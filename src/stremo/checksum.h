#pragma once

#include <cstdint>

#include "platform/files.h"

namespace corv::recording {

// The checksum of event files (docs/formats/event-file.md): four chains of multiplications, one for
// every fourth 64-bit word, so that it is about as fast as memory is read. Each step is invertible,
// so any change within a single word is detected with certainty; any other change goes undetected
// with a probability of about 2^-64.
std::uint64_t Checksum(platform::Bytes bytes, std::uint64_t seed) noexcept;

}  // namespace corv::recording
