#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "stremo/vcd/text.h"

namespace corv::vcd {

// Values of std_logic are positions in UX01ZWLH-. No value yet is beyond them.
inline constexpr unsigned kNoLevel = 15;
inline constexpr std::string_view kLevels = "UX01ZWLH-";
enum Level : unsigned { kLevelU = 0, kLevelX = 1, kLevel0 = 2, kLevel1 = 3, kLevelZ = 4 };

// What a word of the changes begins with: up to 8 a level, then these.
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
            of[c | 0x20U] = static_cast<unsigned char>(i);  // letters of lower case
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

// The level of a digit; above 8 for other characters.
constexpr unsigned LevelOf(Byte digit) noexcept {
    return detail::kLeads.of[digit];
}

// The digits of a vector. `bits` and `others` tell of the last 64 of them, the last one as bit 0.
struct Digits {
    const Byte* at;
    std::size_t count;
    std::uint64_t bits;  // of the digits when there is no other one
    bool two_valued;     // no other digit than 0 and 1
};

namespace detail {

// The lowest bits of eight bytes, the first byte's highest.
constexpr unsigned GatherBits(EightBytes bytes) noexcept {
    return static_cast<unsigned>((bytes & EightTimes(1)) * 0x8040201008040201U >> 56);
}

}  // namespace detail

// The digits that begin at `at` and end at a blank.
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

// The digit that is thought in front of digits that are fewer than their variable's elements.
unsigned ExtendingLevel(unsigned first) noexcept;

// The level of a state of a port in the extended format; above 8 for other letters.
unsigned LevelOfPort(Byte state) noexcept;

// A real number, inf and nan among them; false when the text is none. A decimal one that passes the
// range becomes the largest one.
bool ReadReal(std::string_view text, double& number, bool& passes) noexcept;

// The characters of a text with its escapes resolved, C's: \n \t \\ \' \" \? \a \b \f \v \r, up to
// three octal digits, \x and hexadecimal ones.
void Unescape(std::string_view text, std::string& characters);

}  // namespace corv::vcd
