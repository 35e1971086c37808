#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "stremo/byte_code.h"

// Bytes of a VCD file, which is a sequence of words between blanks. Lines mean nothing, except to
// guess the structure of a damaged file.
namespace corv::vcd {

using recording::Bytes;
using Byte = unsigned char;

constexpr bool IsBlank(Byte c) noexcept {
    return c <= ' ';
}
constexpr bool IsDigit(Byte c) noexcept {
    return c >= '0' && c <= '9';
}

inline std::string_view Text(const Byte* begin, const Byte* end) noexcept {
    return {reinterpret_cast<const char*>(begin), static_cast<std::size_t>(end - begin)};
}

// Eight bytes at once, the first one as the lowest byte of the number, so that words are scanned
// eight characters per step on any machine.
using EightBytes = std::uint64_t;
inline EightBytes LoadEight(const Byte* at) noexcept {
    return recording::LoadNumber<EightBytes>(at);
}
constexpr EightBytes EightTimes(Byte c) noexcept {
    return 0x0101010101010101U * c;
}

// Returns the number of bytes before the first blank, 8 if there is none.
constexpr unsigned BytesToBlank(EightBytes bytes) noexcept {
    // the highest bit of each byte below 0x21; bits after the first such byte may be wrong
    const EightBytes blanks = (bytes - EightTimes(' ' + 1)) & ~bytes & EightTimes(0x80);
    return static_cast<unsigned>(std::countr_zero(blanks)) / 8;
}
constexpr EightBytes FirstBytes(EightBytes bytes, unsigned count) noexcept {
    return count < 8 ? bytes & ((EightBytes{1} << (8 * count)) - 1) : bytes;
}

// Returns the end of the word that begins at `at`.
inline const Byte* WordEnd(const Byte* at, const Byte* end) noexcept {
    while (end - at >= 8) {
        const unsigned length = BytesToBlank(LoadEight(at));
        at += length;
        if (length < 8) {
            return at;
        }
    }
    while (at != end && !IsBlank(*at)) {
        ++at;
    }
    return at;
}

inline const Byte* SkipBlanks(const Byte* at, const Byte* end) noexcept {
    while (at != end && IsBlank(*at)) {
        ++at;
    }
    return at;
}

// Takes the word after blanks; empty at the end.
inline std::string_view NextWord(const Byte*& at, const Byte* end) noexcept {
    const Byte* const begin = SkipBlanks(at, end);
    at = WordEnd(begin, end);
    return Text(begin, at);
}

// "#" and digits.
constexpr bool IsTimeWord(std::string_view word) noexcept {
    return word.size() > 1 && word[0] == '#' &&
           word.find_first_not_of("0123456789", 1) == std::string_view::npos;
}

// The commands of the format. `declares` means that it occurs only before the changes.
struct Command {
    std::string_view word;
    bool declares;
    bool begins_changes;
};
// Returns null for other words.
const Command* FindCommand(std::string_view word) noexcept;

// A text that ends with $end.
struct CommandText {
    std::string_view text;  // without the blanks around it
    bool ended;             // $end was there
    bool whole;             // false: the file ends first
};
// Moves past the $end. A line that begins with another command or a time also ends the text, since
// the $end must have been lost.
CommandText ReadToEnd(const Byte*& at, const Byte* end) noexcept;

// Returns where the complete words of a file end, whose last bytes these are: a word that touches
// the end may have been cut, unless it is $end or longer than these bytes.
const Byte* WholeWordsEnd(Bytes last) noexcept;

}  // namespace corv::vcd
