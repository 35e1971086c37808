#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "corv/signals/byte_stream.h"

namespace corv::tree {

// The counts and lengths of a saved tree: 2 bytes, little-endian.

// Writes the low 16 bits of a number.
inline HRESULT WriteNumber(IByteStream& stream, std::size_t number) {
    const std::array<unsigned char, 2> bytes{static_cast<unsigned char>(number & 0xFF),
                                             static_cast<unsigned char>(number >> 8 & 0xFF)};
    return stream.Write(bytes.data(), bytes.size());
}

// Leaves the number unchanged if it cannot be read.
inline HRESULT ReadNumber(IByteStream& stream, std::size_t& number) {
    std::array<unsigned char, 2> bytes{};
    const HRESULT result = stream.Read(bytes.data(), bytes.size());
    if (SUCCEEDED(result)) {
        number = bytes[0] | static_cast<std::size_t>(bytes[1]) << 8;
    }
    return result;
}

}  // namespace corv::tree
