#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "typeinfo/type_tree.h"

// Reader and writer of the text of one scalar value. A value is represented by its stored bits.
//
//     enumeration = literal | character | "'" character "'"
//     integer, floating point: see number_text.h
//
// A literal that is a word is read without regard to case, unless it begins with a backslash. A
// character is read with regard to case, but a lower-case letter also means the upper-case one if
// only that is a literal.
namespace corv::typeinfo {

// Returns nullopt for a text that is not a value of the type or is out of its range.
std::optional<std::uint64_t> ReadScalar(TypeView type, std::string_view text) noexcept;

struct ScalarStyle {
    int radix = 10;       // of integers
    bool quoted = false;  // one-character literals of character lists in apostrophes
};

// Appends the text of the bits. Returns false, with nothing appended, if they are not a value that
// has a text. `Out` is a std::string or a FixedText.
template <class Out>
bool AppendScalar(Out& out, TypeView type, std::uint64_t bits, ScalarStyle style);

// The position that each character is read as, kNoPosition for characters that are not literals.
using CharacterPositions = std::array<std::uint32_t, 256>;
inline constexpr std::uint32_t kNoPosition = 0xFFFFFFFF;
CharacterPositions PositionsOf(TypeView enumeration) noexcept;

// Return whether a number is between the bounds. A bound written with six significant digits may
// have been rounded, so numbers that round to it count as inside.
bool IsWithin(double number, const RealRange& range) noexcept;
bool IsWithin(std::int32_t number, const IndexRange& range) noexcept;

}  // namespace corv::typeinfo
