#pragma once

#include <cstddef>
#include <cstdint>

// Scalars in a stored value: the low bytes of 64 bits, least significant byte first, whatever the
// byte order of the machine.
namespace corv::typeinfo {

inline std::uint64_t LoadScalar(const unsigned char* bytes, std::size_t size) noexcept {
    if (size == 1) {
        return bytes[0];
    }
    std::uint64_t bits = 0;
    for (std::size_t i = 0; i < size; ++i) {
        bits |= std::uint64_t{bytes[i]} << (8 * i);
    }
    return bits;
}

inline void StoreScalar(unsigned char* bytes, std::size_t size, std::uint64_t bits) noexcept {
    bytes[0] = static_cast<unsigned char>(bits);
    for (std::size_t i = 1; i < size; ++i) {
        bytes[i] = static_cast<unsigned char>(bits >> (8 * i));
    }
}

}  // namespace corv::typeinfo
