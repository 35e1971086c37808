// Finds types for formulas that have none, so that their values can be recorded: the values
// themselves suggest std_logic, an integer, a real number or an enumeration.

#include "host/value_type.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <functional>
#include <vector>

#include "corv/platform/cstring.h"
#include "corv/typeinfo/type_builders.h"
#include "host/formula_words.h"

namespace corv::host {
namespace {

// The most elements that a dimension of a signal may have; VectorType divides wider vectors.
constexpr int kMostIndices = 256;
constexpr std::string_view kLogicLetters = "UX01ZWLH-uxzwlh";
constexpr const char* kInteger = "i#7#integerrict-2147483648 2147483647";
constexpr const char* kReal = "f#4#realrrct-1.79769e+308 1.79769e+308";
constexpr const char* kStdLogic = "e#9#std_logicc9 UX01ZWLH-";

template <class Number>
bool IsNumber(std::string_view text) {
    Number number{};
    const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
    return read.ec == std::errc() && read.ptr == text.data() + text.size();
}

bool IsLogic(const std::string& text) {
    const std::string_view letter = WithoutQuotes(text);
    return letter.size() == 1 && kLogicLetters.find(letter[0]) != std::string_view::npos;
}
bool IsInteger(const std::string& text) {
    return IsNumber<std::int32_t>(text);
}
// Accepts a point or an exponent, since from_chars would also read "inf" and "nan", which are more
// likely literals.
bool IsReal(const std::string& text) {
    return IsInteger(text) ||
           (text.find_first_of(".eE") != std::string::npos && IsNumber<double>(text));
}

bool IsLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
bool IsIdentifier(const std::string& text) {
    return !text.empty() && IsLetter(text[0]) && std::all_of(text.begin(), text.end(), [](char c) {
        return IsLetter(c) || (c >= '0' && c <= '9') || c == '_';
    });
}

// Returns a builder's string, asking for its size first.
std::string Built(const std::function<HRESULT(char*, std::uint32_t*)>& build) {
    std::uint32_t size = 0;
    build(nullptr, &size);
    std::string text(size, '\0');
    build(text.data(), &size);
    text.resize(size > 0 ? size - 1 : 0);
    return text;
}

std::string EnumType(const std::vector<std::string>& literals) {
    std::vector<TEnumValue> values;
    values.reserve(literals.size());
    for (const std::string& literal : literals) {
        values.emplace_back(literal.c_str());
    }
    return Built([&](char* buffer, std::uint32_t* size) {
        return CreateEnumTypeInfo("", values.data(), static_cast<std::uint32_t>(values.size()),
                                  buffer, size);
    });
}

std::string ArrayType(int left, int right, const std::string& element) {
    const TArrayRange range{left, right};
    const char* const name = element == kStdLogic ? "std_logic_vector" : "";
    return Built([&](char* buffer, std::uint32_t* size) {
        return CreateArrayTypeInfo(name, &range, 1, element.c_str(), buffer, size);
    });
}

}  // namespace

std::optional<std::string> InferType(const std::set<std::string>& values) {
    const auto all = [&](bool (*is)(const std::string&)) {
        return std::all_of(values.begin(), values.end(), is);
    };
    if (all(IsLogic)) {
        return kStdLogic;
    }
    if (all(IsInteger)) {
        return kInteger;
    }
    if (all(IsReal)) {
        return kReal;
    }
    std::set<std::string> names;  // enumerations do not distinguish case
    for (const std::string& value : values) {
        CString lower(value);
        lower.MakeLower();
        names.insert(std::string(lower.View()));
    }
    return all(IsIdentifier) && names.size() == values.size()
               ? std::optional(EnumType({values.begin(), values.end()}))
               : std::nullopt;
}

std::vector<Problem> StrayLetters(const std::string& formula) {
    std::vector<Problem> stray;
    std::set<std::string> values;
    bool bits = false;
    for (const WordPlace place : ValueWords(formula)) {
        const std::string word = formula.substr(place.position, place.length);
        const std::string_view letter = WithoutQuotes(word);
        values.insert(word);
        bits |= letter == "0" || letter == "1";
        if (letter.size() == 1 && !IsLogic(word)) {
            stray.push_back({place.position, place.length,
                             "`" + word +
                                 "` is not a value of std_logic, which has U, X, 0, 1, "
                                 "Z, W, L, H and -",
                             Problem::Severity::Warning});
        }
    }
    // words without 0 and 1 are probably meant as literals of an enumeration
    return bits && !InferType(values) ? stray : std::vector<Problem>();
}

std::string CharacterType(std::string_view characters) {
    const bool logic = characters.find_first_not_of(kLogicLetters) == std::string_view::npos;
    std::vector<std::string> literals;
    for (const char c : characters) {
        literals.emplace_back(1, c);
    }
    return logic ? kStdLogic : EnumType(literals);
}

std::string NumberedType(std::size_t count) {
    std::vector<std::string> literals;
    for (std::size_t i = 0; i < count; ++i) {
        literals.push_back(NumberedLiteral(i));
    }
    return EnumType(literals);
}

std::string NumberedLiteral(std::size_t position) {
    return "v" + std::to_string(position);
}

std::string VectorType(int width, const std::string& element) {
    if (width <= kMostIndices) {
        return ArrayType(width - 1, 0, element);
    }
    std::vector<TRecordField> fields;
    for (int left = width - 1; left >= 0; left -= kMostIndices) {
        const int right = std::max(left - kMostIndices + 1, 0);
        fields.emplace_back(("from" + std::to_string(left)).c_str(),
                            ArrayType(left, right, element).c_str());
    }
    return Built([&](char* buffer, std::uint32_t* size) {
        return CreateRecordTypeInfo("", fields.data(), static_cast<std::uint32_t>(fields.size()),
                                    buffer, size);
    });
}

std::string_view WithoutQuotes(std::string_view value) {
    const bool quoted =
        value.size() == 3 && value[0] == value[2] && (value[0] == '\'' || value[0] == '"');
    return quoted ? value.substr(1, 1) : value;
}

}  // namespace corv::host
