#include "typeinfo/scalar_text.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "platform/ascii.h"
#include "typeinfo/fixed_text.h"
#include "typeinfo/number_text.h"

namespace corv::typeinfo {
namespace {

std::uint32_t FindCharacter(TypeView type, char c) noexcept {
    if (!type.HasWords()) {
        const std::size_t at = type.Characters().find(c);
        return at == std::string_view::npos ? kNoPosition : static_cast<std::uint32_t>(at);
    }
    for (std::uint32_t i = 0; i < type.Count(); ++i) {
        if (type.Character(i) == c) {
            return i;
        }
    }
    return kNoPosition;
}

std::uint32_t PositionOfCharacter(TypeView type, char c) noexcept {
    const std::uint32_t position = FindCharacter(type, c);
    const char large = platform::Upper(c);
    return position == kNoPosition && large != c ? FindCharacter(type, large) : position;
}

std::uint32_t PositionOfWord(TypeView type, std::string_view word) noexcept {
    for (std::uint32_t i = 0; type.HasWords() && i < type.Count(); ++i) {
        const std::string_view literal = type.Literal(i);
        if (literal[0] == '\\' ? literal == word
                               : literal[0] != '\'' && platform::EqualNoCase(literal, word)) {
            return i;
        }
    }
    return kNoPosition;
}

std::uint32_t PositionOf(TypeView type, std::string_view text) noexcept {
    if (text.size() == 3 && text[0] == '\'' && text[2] == '\'') {
        return PositionOfCharacter(type, text[1]);
    }
    const std::uint32_t position = PositionOfWord(type, text);
    return position == kNoPosition && text.size() == 1 ? PositionOfCharacter(type, text[0])
                                                       : position;
}

template <class Out>
bool AppendLiteral(Out& out, TypeView type, std::uint64_t bits, bool quoted) {
    if (bits >= type.Count()) {
        return false;
    }
    const auto position = static_cast<std::uint32_t>(bits);
    if (quoted && !type.HasWords()) {
        out += '\'';
    }
    const std::string_view literal = type.Literal(position);
    out += literal;
    if (type.HasWords() ? literal[0] == '\'' : quoted) {
        out += '\'';
    }
    return true;
}

}  // namespace

std::optional<std::uint64_t> ReadScalar(TypeView type, std::string_view text) noexcept {
    if (type.Kind() == KTypeInfo::KindEnum) {
        const std::uint32_t position = PositionOf(type, text);
        return position == kNoPosition ? std::nullopt : std::optional<std::uint64_t>(position);
    }
    if (type.Kind() == KTypeInfo::KindInteger) {
        const auto number = ReadInteger(text);
        return number && IsWithin(*number, type.RangeAt(0))
                   ? std::optional<std::uint64_t>(static_cast<std::uint32_t>(*number))
                   : std::nullopt;
    }
    const auto number = ReadReal(text);
    return number && IsWithin(*number, type.FloatRange())
               ? std::optional(std::bit_cast<std::uint64_t>(*number))
               : std::nullopt;
}

template <class Out>
bool AppendScalar(Out& out, TypeView type, std::uint64_t bits, ScalarStyle style) {
    if (type.Kind() == KTypeInfo::KindEnum) {
        return AppendLiteral(out, type, bits, style.quoted);
    }
    if (type.Kind() == KTypeInfo::KindInteger) {
        AppendInteger(out, static_cast<std::int32_t>(static_cast<std::uint32_t>(bits)),
                      style.radix);
        return true;
    }
    const auto number = std::bit_cast<double>(bits);
    if (!std::isfinite(number)) {
        return false;
    }
    AppendReal(out, number);
    return true;
}

template bool AppendScalar(std::string&, TypeView, std::uint64_t, ScalarStyle);
template bool AppendScalar(FixedText&, TypeView, std::uint64_t, ScalarStyle);

CharacterPositions PositionsOf(TypeView enumeration) noexcept {
    CharacterPositions positions;
    positions.fill(kNoPosition);
    // First all letters in lower case, then the literals as they are written: these override, so a
    // lower-case letter stands for an upper-case literal only if it is not a literal itself.
    for (const bool as_small : {true, false}) {
        for (std::uint32_t i = enumeration.Count(); i-- > 0;) {  // the first of equal literals wins
            if (const auto c = enumeration.Character(i)) {
                const char letter = as_small ? platform::Lower(*c) : *c;
                positions[static_cast<unsigned char>(letter)] = i;
            }
        }
    }
    return positions;
}

bool IsWithin(double number, const RealRange& range) noexcept {
    const double low = std::min(range.left, range.right);
    const double high = std::max(range.left, range.right);
    if (low <= number && number <= high) {
        return true;
    }
    // Only a bound that needs all six digits can have been rounded; a shorter one is exact.
    const double bound = number < low ? low : high;
    return RoundToDigits(bound, 5) != bound && RoundToDigits(number, 6) == bound;
}

bool IsWithin(std::int32_t number, const IndexRange& range) noexcept {
    return std::min(range.left, range.right) <= number &&
           number <= std::max(range.left, range.right);
}

}  // namespace corv::typeinfo
