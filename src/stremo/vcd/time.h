#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace corv::vcd {

// Converts the times of a file to picoseconds, in whole numbers, rounded down.
class TimeScale {
public:
    // Reads a number and a unit with or without a blank between them: 1ns, 100 ps, 1 sec, 0.001fs.
    // Returns nullopt for other texts and for numbers of more than six digits.
    static std::optional<TimeScale> Read(std::string_view text) noexcept;
    static TimeScale Nanosecond() noexcept { return {1000, 1}; }

    // Times beyond 64 bits become the last one that fits.
    std::int64_t ToPicoseconds(std::uint64_t time) const noexcept;
    // Returns whether times may be between picoseconds.
    bool Rounds() const noexcept { return divisor_ > 1; }

private:
    TimeScale(std::uint64_t factor, std::uint64_t divisor) noexcept
        : factor_(factor), divisor_(divisor) {}

    std::uint64_t factor_;   // at most a million when the divisor is above 1
    std::uint64_t divisor_;  // at most 10^12
};

// Reads digits as a number; returns nullopt if there are none, other characters, or too many for 64
// bits.
std::optional<std::uint64_t> ReadDecimal(std::string_view digits) noexcept;

}  // namespace corv::vcd
