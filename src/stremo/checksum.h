#pragma once

#include <cstdint>

#include "platform/files.h"

namespace corv::recording {

// The checksum of event files (docs/formats/event-file.md): four chains of multiplications, one for
// every fourth 64-bit word, so that it runs about as fast as memory is read. Each step keeps a
// difference, so any change within one word is found for certain, any other but for one in 2^64.
std::uint64_t Checksum(platform::Bytes bytes, std::uint64_t seed) noexcept;

}  // namespace corv::recording
