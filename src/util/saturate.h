#pragma once

#include <cstdint>
#include <limits>
#include <optional>

// 64-bit arithmetic that never overflows: times are user input, so any sum or product of them may
// leave the range.
namespace corv::util {

using Int64Limits = std::numeric_limits<std::int64_t>;

// Truncates toward zero; values outside become the nearer end, NaN becomes 0.
inline std::int64_t ToInt64(double value) noexcept {
    if (!(value > -9223372036854775808.0)) {
        return value != value ? 0 : Int64Limits::min();
    }
    return value < 9223372036854775808.0 ? static_cast<std::int64_t>(value) : Int64Limits::max();
}

inline std::optional<std::int64_t> CheckedAdd(std::int64_t a, std::int64_t b) noexcept {
    if (b > 0 ? a > Int64Limits::max() - b : a < Int64Limits::min() - b) {
        return std::nullopt;
    }
    return a + b;
}

inline std::int64_t SaturatingAdd(std::int64_t a, std::int64_t b) noexcept {
    return CheckedAdd(a, b).value_or(b > 0 ? Int64Limits::max() : Int64Limits::min());
}

inline std::int64_t SaturatingSubtract(std::int64_t a, std::int64_t b) noexcept {
    if (b < 0 ? a > Int64Limits::max() + b : a < Int64Limits::min() + b) {
        return b < 0 ? Int64Limits::max() : Int64Limits::min();
    }
    return a - b;
}

// The factor must be above 0.
inline std::int64_t SaturatingMultiply(std::int64_t value, std::int64_t factor) noexcept {
    constexpr std::int64_t kSmall = std::numeric_limits<std::int32_t>::max();
    if (value >= -kSmall && value <= kSmall && factor <= kSmall) {
        return value * factor;  // no division for the most frequent times
    }
    if (value > Int64Limits::max() / factor) {
        return Int64Limits::max();
    }
    return value < Int64Limits::min() / factor ? Int64Limits::min() : value * factor;
}

inline std::uint64_t SaturatingMultiply(std::uint64_t a, std::uint64_t b) noexcept {
    return b != 0 && a > std::numeric_limits<std::uint64_t>::max() / b
               ? std::numeric_limits<std::uint64_t>::max()
               : a * b;
}

}  // namespace corv::util
