#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace corv::vcd {

// From the numbers of a recording to picoseconds, in whole numbers, rounded down.
class TimeScale {
public:
    // A number and a unit with or without a blank between: 1ns, 100 ps, 1 sec, 0.001fs. Nothing
    // when the text is none, and for numbers of more than six digits.
    static std::optional<TimeScale> Read(std::string_view text) noexcept;
    static TimeScale Nanosecond() noexcept { return {1000, 1}; }

    // Times that pass 64 bits become the last one that fits.
    std::int64_t ToPicoseconds(std::uint64_t time) const noexcept;
    // Whether times may lie between picoseconds.
    bool Rounds() const noexcept { return divisor_ > 1; }

private:
    TimeScale(std::uint64_t factor, std::uint64_t divisor) noexcept
        : factor_(factor), divisor_(divisor) {}

    std::uint64_t factor_;   // at most a million when the divisor is above 1
    std::uint64_t divisor_;  // at most 10^12
};

// Digits as a number; nothing when there are none, others or too many for 64 bits.
std::optional<std::uint64_t> ReadDecimal(std::string_view digits) noexcept;

}  // namespace corv::vcd
