#include "stremo/checksum.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstring>

#include "stremo/byte_code.h"

namespace corv::recording {
namespace {

// Four chains do not depend on each other, which hides the latency of the multiplications. The
// factor is 2^64 divided by the golden ratio, an odd number with well-mixed bits; the rotation
// brings its high bits, which depend on all others, back to the low end.
constexpr std::size_t kChains = 4;
constexpr std::size_t kStride = kChains * sizeof(std::uint64_t);
constexpr std::uint64_t kFactor = 0x9E3779B97F4A7C15;

constexpr std::uint64_t Step(std::uint64_t chain, std::uint64_t word) noexcept {
    return std::rotl((chain ^ word) * kFactor, 29);
}

void Absorb(std::uint64_t (&chains)[kChains], const unsigned char* bytes) noexcept {
    for (std::size_t i = 0; i < kChains; ++i) {
        chains[i] = Step(chains[i], LoadNumber<std::uint64_t>(bytes + 8 * i));
    }
}

}  // namespace

std::uint64_t Checksum(platform::Bytes bytes, std::uint64_t seed) noexcept {
    std::uint64_t chains[kChains] = {seed, seed + 1, seed + 2, seed + 3};
    std::size_t at = 0;
    for (; bytes.size() - at >= kStride; at += kStride) {
        Absorb(chains, bytes.data() + at);
    }
    if (at < bytes.size()) {
        unsigned char last[kStride] = {};
        std::copy(bytes.begin() + static_cast<std::ptrdiff_t>(at), bytes.end(), last);
        Absorb(chains, last);
    }
    std::uint64_t sum = bytes.size();
    for (const std::uint64_t chain : chains) {
        sum = Step(sum, chain);
    }
    return sum ^ (sum >> 32);
}

}  // namespace corv::recording
