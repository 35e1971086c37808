#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "typeinfo/type_tree.h"

// The text of one scalar value, its reader and its writer. A value is its stored bits.
//
//     enumeration = literal | character | "'" character "'"
//     integer, floating point: see number_text.h
//
// A literal that is a word is read without regard to case, unless it begins with a backslash. A
// character is read with regard to case, but a small letter also stands for the large one where
// only that is a literal.
namespace corv::typeinfo {

// Nothing for a text that is no value of the type, or one out of its range.
std::optional<std::uint64_t> ReadScalar(TypeView type, std::string_view text) noexcept;

struct ScalarStyle {
    int radix = 10;       // of integers
    bool quoted = false;  // one-character literals of character lists in apostrophes
};

// Appends the text of the bits; false, nothing appended, when they are no value with a text. `Out`
// is a std::string or a FixedText.
template <class Out>
bool AppendScalar(Out& out, TypeView type, std::uint64_t bits, ScalarStyle style);

// The position that each character reads as, kNoPosition for those that are no literal.
using CharacterPositions = std::array<std::uint32_t, 256>;
inline constexpr std::uint32_t kNoPosition = 0xFFFFFFFF;
CharacterPositions PositionsOf(TypeView enumeration) noexcept;

// Whether a number is a value between the bounds. A bound written with six significant digits may
// have been rounded, so numbers that round to it count.
bool IsWithin(double number, const RealRange& range) noexcept;
bool IsWithin(std::int32_t number, const IndexRange& range) noexcept;

}  // namespace corv::typeinfo
