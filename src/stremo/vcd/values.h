#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "stremo/vcd/text.h"

namespace corv::vcd {

// Values of std_logic are positions in UX01ZWLH-. "No value yet" is beyond them.
inline constexpr unsigned kNoLevel = 15;
inline constexpr std::string_view kLevels = "UX01ZWLH-";
enum Level : unsigned { kLevelU = 0, kLevelX = 1, kLevel0 = 2, kLevel1 = 3, kLevelZ = 4 };

// What a word of the changes begins with: up to 8 is a level, the others are these. One table
// look-up per word decides how to read it.
enum Lead : unsigned char {
    kLeadBlank = 16,
    kLeadTime,
    kLeadVector,
    kLeadReal,
    kLeadText,
    kLeadPort,
    kLeadCommand,
    kLeadOther,
};

namespace detail {

struct Leads {
    std::array<unsigned char, 256> of{};
    constexpr Leads() noexcept {
        for (unsigned c = 0; c < 256; ++c) {
            of[c] = c <= ' ' ? kLeadBlank : kLeadOther;
        }
        for (unsigned i = 0; i < kLevels.size(); ++i) {
            const auto c = static_cast<unsigned char>(kLevels[i]);
            of[c] = static_cast<unsigned char>(i);
            of[c | 0x20U] = static_cast<unsigned char>(i);  // lower-case letters
        }
        of['?'] = kLevelX;
        of['#'] = kLeadTime;
        of['b'] = of['B'] = kLeadVector;
        of['r'] = of['R'] = kLeadReal;
        of['s'] = of['S'] = kLeadText;
        of['p'] = kLeadPort;
        of['$'] = kLeadCommand;
    }
};
inline constexpr Leads kLeads;

}  // namespace detail

// Returns the level of a digit; above 8 for other characters.
constexpr unsigned LevelOf(Byte digit) noexcept {
    return detail::kLeads.of[digit];
}

// The digits of a vector. `bits` are the last 64 of them, the last one as bit 0.
struct Digits {
    const Byte* at;
    std::size_t count;
    std::uint64_t bits;  // meaningful if two_valued
    bool two_valued;     // all digits are 0 or 1
};

namespace detail {

// Gathers the lowest bits of eight bytes, that of the first byte as the highest. The multiplication
// shifts each of them to its place in the top byte.
constexpr unsigned GatherBits(EightBytes bytes) noexcept {
    return static_cast<unsigned>((bytes & EightTimes(1)) * 0x8040201008040201U >> 56);
}

}  // namespace detail

// Reads the digits that begin at `at` and end at a blank, eight at a time.
inline Digits ReadDigits(const Byte* at, const Byte* end) noexcept {
    Digits digits{at, 0, 0, true};
    EightBytes other = 0;
    const Byte* p = at;
    while (end - p >= 8)
        [[likely]] {
            const EightBytes bytes = LoadEight(p);
            const unsigned length = BytesToBlank(bytes);
            EightBytes values = bytes ^ EightTimes('0');
            if (length < 8) {
                values = length != 0 ? values << (64 - 8 * length) : 0;
                other |= values;
                p += length;
                digits.bits = digits.bits << length | detail::GatherBits(values);
                digits.count = static_cast<std::size_t>(p - at);
                digits.two_valued = (other & EightTimes(0xFE)) == 0;
                return digits;
            }
            other |= values;
            digits.bits = digits.bits << 8 | detail::GatherBits(values);
            p += 8;
        }
    for (; p != end && !IsBlank(*p); ++p) {
        other |= static_cast<EightBytes>(*p ^ '0');
        digits.bits = digits.bits << 1 | (*p & 1U);
    }
    digits.count = static_cast<std::size_t>(p - at);
    digits.two_valued = (other & EightTimes(0xFE)) == 0;
    return digits;
}

// Returns the level by which a value with fewer digits than elements is extended on the left.
unsigned ExtendingLevel(unsigned first) noexcept;

// Returns the level of a port's state in the extended format; above 8 for other letters.
unsigned LevelOfPort(Byte state) noexcept;

// Reads a real number, including inf and nan. Returns false for other texts. A decimal number
// beyond the range becomes the largest double, and `passes` becomes true.
bool ReadReal(std::string_view text, double& number, bool& passes) noexcept;

// Stores the characters of a text with the escapes of C resolved: \n \t \\ \' \" \? \a \b \f \v \r,
// up to three octal digits, and \x with hexadecimal digits.
void Unescape(std::string_view text, std::string& characters);

}  // namespace corv::vcd
