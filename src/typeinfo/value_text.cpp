#include "typeinfo/value_text.h"

#include <algorithm>
#include <optional>

#include "platform/ascii.h"
#include "typeinfo/fixed_text.h"
#include "typeinfo/stored_scalar.h"

namespace corv::typeinfo {
namespace {

// ---- reading ----

// Reads plain characters, of which there are as many as elements. Most values come in this form.
bool StorePlain(const CharacterPositions& positions, std::string_view text, std::size_t size,
                unsigned char* target) noexcept {
    const auto position_of = [&](char c) { return positions[static_cast<unsigned char>(c)]; };
    if (std::any_of(text.begin(), text.end(),
                    [&](char c) { return position_of(c) == kNoPosition; })) {
        return false;
    }
    if (size == 1) {
        std::transform(text.begin(), text.end(), target,
                       [&](char c) { return static_cast<unsigned char>(position_of(c)); });
        return true;
    }
    for (std::size_t i = 0; i < text.size(); ++i) {
        StoreScalar(target + i * size, size, position_of(text[i]));
    }
    return true;
}

// Every other form of an array passes its values to `visit` in order, and returns false at the
// first part that it cannot read or if `visit` does.

bool IsInQuotes(std::string_view text) noexcept {
    return text.size() >= 2 && text.front() == '"' && text.back() == '"';
}

template <class Visit>
bool ReadQuoted(const CharacterPositions& positions, std::string_view text, Visit&& visit) {
    if (!IsInQuotes(text)) {
        return false;
    }
    const std::string_view inside = text.substr(1, text.size() - 2);
    for (std::size_t i = 0; i < inside.size(); ++i) {
        if (inside[i] == '"' && inside.substr(++i, 1) != "\"") {
            return false;
        }
        const std::uint32_t position = positions[static_cast<unsigned char>(inside[i])];
        if (position == kNoPosition || !visit(position)) {
            return false;
        }
    }
    return true;
}

// Returns how many bits a digit of the radix has, 0 for a letter that is not a radix.
unsigned BitsPerDigit(char radix) noexcept {
    switch (platform::Lower(radix)) {
        case 'x':
            return 4;
        case 'o':
            return 3;
        case 'b':
            return 1;
        default:
            return 0;
    }
}

std::optional<unsigned> DigitOf(char c, unsigned bits) noexcept {
    constexpr std::string_view kDigits = "0123456789abcdef";
    const std::size_t digit = kDigits.find(platform::Lower(c));
    return digit < std::size_t{1} << bits ? std::optional(static_cast<unsigned>(digit))
                                          : std::nullopt;
}

template <class Visit>
bool ReadBitString(const CharacterPositions& positions, std::string_view text, Visit&& visit) {
    const unsigned bits = text.empty() ? 0 : BitsPerDigit(text[0]);
    if (bits == 0 || !IsInQuotes(text.substr(1)) || positions['0'] == kNoPosition ||
        positions['1'] == kNoPosition) {
        return false;
    }
    char before = '_';
    for (const char c : text.substr(2, text.size() - 3)) {
        const bool joins = c == '_' && before != '_';
        const auto digit = DigitOf(c, bits);
        before = c;
        if (joins) {
            continue;
        }
        if (!digit) {
            return false;
        }
        for (unsigned bit = bits; bit-- > 0;) {
            if (!visit(positions[(*digit >> bit) & 1 ? '1' : '0'])) {
                return false;
            }
        }
    }
    return before != '_';
}

std::string_view TrimBlanks(std::string_view text) noexcept {
    while (!text.empty() && platform::IsSpace(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && platform::IsSpace(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

// Returns where the first scalar of a list ends: at a comma outside apostrophes and backslashes,
// which may be part of a literal.
std::size_t ScalarEnd(std::string_view list) noexcept {
    std::size_t at = 0;
    while (at < list.size() && platform::IsSpace(list[at])) {
        ++at;
    }
    if (list.substr(at, 1) == "'" && list.substr(std::min(at + 2, list.size()), 1) == "'") {
        at += 3;
    }
    while (list.substr(std::min(at, list.size()), 1) == "\\") {  // a doubled backslash starts over
        at = std::min(list.find('\\', at + 1), list.size()) + 1;
    }
    return std::min(list.find(',', at), list.size());
}

template <class Visit>
bool ReadAggregate(TypeView element, std::string_view text, Visit&& visit) {
    if (text.size() < 2 || text.front() != '(' || text.back() != ')') {
        return false;
    }
    std::string_view list = text.substr(1, text.size() - 2);
    while (true) {
        const std::size_t end = ScalarEnd(list);
        const auto value = ReadScalar(element, TrimBlanks(list.substr(0, end)));
        if (!value || !visit(*value)) {
            return false;
        }
        if (end == list.size()) {
            return true;
        }
        list.remove_prefix(end + 1);
    }
}

// Stores the values of a form if there are as many as elements. The text is read twice, so that
// nothing is written unless all of it can be read, without memory for a copy.
template <class Reading>
bool Store(TypeView type, unsigned char* target, Reading&& reading) {
    const auto wanted = static_cast<std::uint64_t>(type.ElementCount());
    const std::size_t size = type.Element().ScalarSize();
    std::uint64_t count = 0;
    if (!reading([&](std::uint64_t) { return ++count <= wanted; }) || count != wanted) {
        return false;
    }
    return reading([&](std::uint64_t bits) {
        StoreScalar(target, size, bits);
        target += size;
        return true;
    });
}

bool ReadArrayOfCharacters(TypeView type, std::string_view text, unsigned char* target) {
    const CharacterPositions positions = PositionsOf(type.Element());
    const bool has_count = text.size() == static_cast<std::uint64_t>(type.ElementCount());
    return (has_count && StorePlain(positions, text, type.Element().ScalarSize(), target)) ||
           Store(type, target, [&](auto visit) { return ReadQuoted(positions, text, visit); }) ||
           Store(type, target, [&](auto visit) { return ReadBitString(positions, text, visit); });
}

// ---- writing ----

// Writes the values as characters if all of them are one-character literals. `out` has room for
// them.
bool WriteCharacters(TypeView element, const unsigned char* bytes, std::size_t count, char* out) {
    const std::size_t size = element.ScalarSize();
    if (size == 1 && !element.HasWords()) {
        const std::string_view characters = element.Characters();
        // One check for all values, so that the loop below is free of branches.
        unsigned char highest = 0;
        for (std::size_t i = 0; i < count; ++i) {
            highest = std::max(highest, bytes[i]);
        }
        if (highest >= characters.size()) {
            return false;
        }
        const char* const literals = characters.data();
        constexpr std::size_t kStep = 8;  // a loop of fixed length is unrolled by the compiler
        std::size_t i = 0;
        for (; i + kStep <= count; i += kStep) {
            for (std::size_t j = 0; j < kStep; ++j) {
                out[i + j] = literals[bytes[i + j]];
            }
        }
        for (; i < count; ++i) {
            out[i] = literals[bytes[i]];
        }
        return true;
    }
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint64_t position = LoadScalar(bytes + i * size, size);
        const auto c = position < element.Count()
                           ? element.Character(static_cast<std::uint32_t>(position))
                           : std::nullopt;
        if (!c) {
            return false;
        }
        out[i] = *c;
    }
    return true;
}

// Puts quotes around the text from a place on, and doubles the quotes in it. It works backwards
// from the new end, so each character moves once.
template <class Out>
void Quote(Out& out, std::size_t begin) {
    const std::size_t end = out.size();
    const auto inside =
        static_cast<std::size_t>(std::count(out.data() + begin, out.data() + end, '"'));
    out.resize(end + inside + 2);
    const char* const first = out.data() + begin;
    const char* from = out.data() + end;
    char* to = out.data() + out.size();
    *--to = '"';
    while (from != first) {
        *--to = *--from;
        if (*from == '"') {
            *--to = '"';
        }
    }
    *--to = '"';
}

template <class Out>
bool AppendCharacters(Out& out, TypeView element, const unsigned char* bytes, std::size_t count,
                      bool quoted) {
    const std::size_t begin = out.size();
    out.resize(begin + count);
    if (!WriteCharacters(element, bytes, count, out.data() + begin)) {
        out.resize(begin);
        return false;
    }
    if (quoted) {
        Quote(out, begin);
    }
    return true;
}

template <class Out>
bool AppendAggregate(Out& out, TypeView element, const unsigned char* bytes, std::size_t count,
                     ScalarStyle style) {
    const std::size_t begin = out.size();
    const std::size_t size = element.ScalarSize();
    style.radix = 10;
    for (std::size_t i = 0; i < count; ++i) {
        out += i == 0 ? '(' : ',';
        if (!AppendScalar(out, element, LoadScalar(bytes + i * size, size), style)) {
            out.resize(begin);
            return false;
        }
    }
    out += ')';
    return true;
}

}  // namespace

bool ReadValue(TypeView type, std::string_view text, unsigned char* target) noexcept {
    if (type.IsScalar()) {
        const auto bits = ReadScalar(type, text);
        if (bits) {
            StoreScalar(target, type.ScalarSize(), *bits);
        }
        return bits.has_value();
    }
    if (!type.IsSimple()) {
        return false;
    }
    return (type.Element().Kind() == KTypeInfo::KindEnum &&
            ReadArrayOfCharacters(type, text, target)) ||
           Store(type, target,
                 [&](auto visit) { return ReadAggregate(type.Element(), text, visit); });
}

template <class Out>
bool AppendValue(Out& out, TypeView type, const unsigned char* bytes, ScalarStyle style) {
    if (type.IsScalar()) {
        return AppendScalar(out, type, LoadScalar(bytes, type.ScalarSize()), style);
    }
    if (!type.IsSimple()) {
        return false;
    }
    const auto count = static_cast<std::size_t>(type.ElementCount());
    const TypeView element = type.Element();
    return (element.Kind() == KTypeInfo::KindEnum &&
            AppendCharacters(out, element, bytes, count, style.quoted)) ||
           AppendAggregate(out, element, bytes, count, style);
}

template bool AppendValue(std::string&, TypeView, const unsigned char*, ScalarStyle);
template bool AppendValue(FixedText&, TypeView, const unsigned char*, ScalarStyle);

}  // namespace corv::typeinfo
