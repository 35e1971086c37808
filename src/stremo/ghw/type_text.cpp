#include "stremo/ghw/type_text.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

#include "platform/ascii.h"
#include "typeinfo/named_types.h"
#include "typeinfo/type_text.h"

namespace corv::ghw {
namespace {

// Looks like a blank, which a word of an enumeration must not contain.
constexpr char kNoBreakSpace = '\xA0';

using Int32 = std::numeric_limits<std::int32_t>;

// Returns the character of a literal such as 'x', nullopt for other literals.
std::optional<char> CharacterOf(std::string_view literal) noexcept {
    const bool quoted = literal.size() == 3 && literal.front() == '\'' && literal.back() == '\'';
    return quoted ? std::optional(literal[1]) : std::nullopt;
}

// Returns a name without blanks, which are replaced by `blank`. A name that could not be read back
// becomes "?" and its number.
std::string Word(std::string_view name, std::size_t number, char blank) {
    std::string word(name);
    if (word.empty() || word.front() == '\'') {
        return "?" + std::to_string(number);
    }
    std::replace(word.begin(), word.end(), ' ', blank);
    return word;
}

std::int32_t Clamp(std::int64_t value) noexcept {
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(value, Int32::min(), Int32::max()));
}

}  // namespace

std::string_view TypeTexts::Of(std::uint32_t type) {
    if (!texts_[type]) {
        std::string text;
        const bool made = !budget_.spent() && Append(text, types_[type]) &&
                          text.size() <= typeinfo::kMaxTextLength;
        // texts that are dropped have cost their time, too
        const bool kept = budget_.Take(text.size()) && made;
        texts_[type] =
            kept ? std::string_view(signals_.KeepShared(text), text.size()) : std::string_view();
    }
    return *texts_[type];
}

bool TypeTexts::Append(std::string& out, const Type& type) {
    switch (type.kind) {
        case Kind::kNone:
            return false;
        case Kind::kEnumeration:
            return AppendEnumeration(out, type);
        case Kind::kInteger:
        case Kind::kPhysical:
            AppendInteger(out, type);
            return true;
        case Kind::kWideInteger:
        case Kind::kWidePhysical:
        case Kind::kReal:
            AppendReal(out, type);
            return true;
        case Kind::kArray:
            return AppendArray(out, type);
        case Kind::kRecord:
            return AppendRecord(out, type);
    }
    return false;
}

bool TypeTexts::AppendEnumeration(std::string& out, const Type& type) {
    if (types_.nine_values() != kNoType && type.root == types_.nine_values()) {
        typeinfo::AppendCharacterEnum(out, type.name, "UX01ZWLH-");
        return true;
    }
    std::string characters;
    std::vector<std::string> words;
    std::size_t length = 0;
    for (std::uint32_t i = 0; i < type.count; ++i) {
        const std::string_view literal = types_.Literal(type, i);
        const std::optional<char> character = CharacterOf(literal);
        length += literal.size();
        if (length > typeinfo::kMaxTextLength) {
            return false;
        }
        characters += character ? std::string(1, *character) : "";
        words.push_back(character ? std::string{'\'', *character}
                                  : Word(literal, i, kNoBreakSpace));
    }
    if (characters.size() == type.count) {
        typeinfo::AppendCharacterEnum(out, type.name, characters);
        return true;
    }
    const std::vector<std::string_view> literals(words.begin(), words.end());
    typeinfo::AppendWordEnum(out, type.name, literals);
    // the standard type character has its control characters in capital letters
    const std::string_view character_type = typeinfo::kStandardTypes[5];
    if (platform::EqualNoCase(out, character_type)) {
        out = character_type;
    }
    return true;
}

void TypeTexts::AppendInteger(std::string& out, const Type& type) {
    typeinfo::IndexRange range{Int32::min(), Int32::max()};
    if (type.bounds.kind != Kind::kNone) {
        range.left = Clamp(type.bounds.left);
        range.right = Clamp(type.bounds.right);
        range.direction = type.bounds.downto ? KTypeInfo::Downto : KTypeInfo::To;
    }
    typeinfo::AppendInteger(out, type.name, range);
}

void TypeTexts::AppendReal(std::string& out, const Type& type) {
    constexpr double kMost = std::numeric_limits<double>::max();
    const bool real = type.kind == Kind::kReal;
    const auto number = [&](std::int64_t bound) {
        bool exact = true;
        const double value =
            real ? std::bit_cast<double>(bound) : ToReal(bound, ScaleOf(type), exact);
        return std::isnan(value) ? 0 : std::clamp(value, -kMost, kMost);
    };
    typeinfo::RealRange range{-kMost, kMost};
    if (type.bounds.kind != Kind::kNone) {
        range.left = number(type.bounds.left);
        range.right = number(type.bounds.right);
        range.direction = type.bounds.downto ? KTypeInfo::Downto : KTypeInfo::To;
    } else if (!real) {
        range.left = number(std::numeric_limits<std::int64_t>::min());
        range.right = number(std::numeric_limits<std::int64_t>::max());
    }
    typeinfo::AppendFloat(out, type.name, range);
}

bool TypeTexts::AppendArray(std::string& out, const Type& type) {
    constexpr std::uint32_t kMostDimensions = 127;  // more would make element names too long
    std::vector<typeinfo::IndexRange> ranges;
    if (type.count > kMostDimensions) {
        return false;
    }
    for (std::uint32_t i = 0; i < type.count; ++i) {
        const Bounds& bounds = types_.DimensionOf(type, i).bounds;
        if (Clamp(bounds.left) != bounds.left || Clamp(bounds.right) != bounds.right) {
            return false;
        }
        ranges.push_back({Clamp(bounds.left), Clamp(bounds.right),
                          bounds.downto ? KTypeInfo::Downto : KTypeInfo::To});
    }
    typeinfo::AppendArrayHead(out, typeinfo::ConstrainedName(type.name, ranges), ranges);
    return AppendPart(out, type.element);
}

bool TypeTexts::AppendRecord(std::string& out, const Type& type) {
    typeinfo::AppendRecordHead(out, type.name, type.count);
    for (std::uint32_t i = 0; i < type.count; ++i) {
        const Field& field = types_.FieldOf(type, i);
        out += i > 0 ? " " : "";
        out += Word(field.name, i, '_');
        out += ' ';
        if (!AppendPart(out, field.type)) {
            return false;
        }
    }
    return true;
}

bool TypeTexts::AppendPart(std::string& out, std::uint32_t type) {
    const std::string_view part = Of(type);
    out += part;
    return !part.empty() && out.size() <= typeinfo::kMaxTextLength;
}

const char* TypeTexts::UnitsOf(std::uint32_t type) {
    const std::uint32_t root = types_[type].root;
    if (units_[root] != nullptr) {
        return units_[root];
    }
    std::string text;
    for (std::uint32_t i = 0; i < types_[root].count && !budget_.spent(); ++i) {
        const Unit& unit = types_.UnitOf(types_[root], i);
        // the file's values for the units of time depend on its own unit
        const int time_unit = root == types_.time() ? util::FindTimeUnit(unit.name) : -1;
        const std::int64_t value =
            time_unit >= 0 ? util::kFemtoseconds[static_cast<unsigned>(time_unit)] : unit.value;
        const std::size_t before = text.size();
        text += text.empty() ? "" : ", ";
        text.append(unit.name).append(" = ").append(std::to_string(value));
        budget_.Take(text.size() - before);
    }
    return units_[root] = signals_.KeepShared(text);
}

}  // namespace corv::ghw
