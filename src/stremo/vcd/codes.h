#pragma once

#include <array>
#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "stremo/signal_table.h"
#include "stremo/vcd/text.h"

namespace corv::vcd {

// The code of a variable, in place in the file.
struct Code {
    const Byte* at;
    std::size_t length;
    EightBytes bytes;  // of a code of at most 8 bytes, padded with zeros

    std::string_view text() const noexcept { return Text(at, at + length); }
};

// Reads the code that begins at `at` and ends at the first blank.
inline Code ReadCode(const Byte* at, const Byte* end) noexcept {
    if (end - at >= 8) [[likely]] {
        const EightBytes bytes = LoadEight(at);
        const unsigned length = BytesToBlank(bytes);
        if (length < 8) [[likely]] {
            return {at, length, FirstBytes(bytes, length)};
        }
    }
    Code code{at, static_cast<std::size_t>(WordEnd(at, end) - at), 0};
    for (std::size_t i = 0; i < code.length && i < 8; ++i) {
        code.bytes |= EightBytes{at[i]} << (8 * i);
    }
    return code;
}

namespace detail {

inline constexpr std::uint32_t kNoDigit = 1U << 24;

// What each character of a short code adds to its number: codes are numbers of base 94, whose
// lowest digit comes first. A character that is not printable adds so much that the sum is out of
// range, which saves a check for each.
struct CodeDigits {
    std::array<std::array<std::uint32_t, 256>, 3> add{};
    constexpr CodeDigits() noexcept {
        for (std::uint32_t c = 0; c < 256; ++c) {
            const bool printable = c > ' ' && c < 0x7F;
            add[0][c] = printable ? c - '!' : kNoDigit;
            add[1][c] = printable ? (c - ' ') * 94 : kNoDigit;
            add[2][c] = printable ? (c - ' ') * 94 * 94 : kNoDigit;
        }
        add[1][0] = 0;
        add[2][0] = 0;
    }
};
inline constexpr CodeDigits kCodeDigits;

}  // namespace detail

// Maps codes to numbers. Simulators count codes up, so nearly all have at most three characters and
// are found in a table without hashing; the others are hashed.
class Codes {
public:
    // Returns recording::kNone for an unknown code.
    std::uint32_t Find(const Code& code) const noexcept {
        if (code.bytes < EightBytes{1} << 24 && code.length <= 3) [[likely]] {
            const std::uint32_t place = NearPlace(code);
            if (place < near_.size()) [[likely]] {
                return near_[place];
            }
            if (place < detail::kNoDigit) {
                return recording::kNone;
            }
        }
        return FindFar(code);
    }

    // The text of the code must keep its address.
    void Set(const Code& code, std::uint32_t number);

private:
    struct Slot {
        EightBytes bytes = 0;
        std::uint32_t number = recording::kNone;
    };

    static std::uint32_t NearPlace(const Code& code) noexcept {
        const auto& add = detail::kCodeDigits.add;
        return add[0][code.bytes & 0xFF] + add[1][code.bytes >> 8 & 0xFF] +
               add[2][code.bytes >> 16 & 0xFF];
    }
    std::uint32_t FindFar(const Code& code) const noexcept;
    std::size_t SlotOf(EightBytes bytes) const noexcept;
    void Grow();

    std::vector<std::uint32_t> near_;
    std::vector<Slot> slots_;  // for up to 8 bytes; a power of two, at most half used
    std::size_t used_ = 0;
    std::unordered_map<std::string_view, std::uint32_t> long_;
};

}  // namespace corv::vcd
