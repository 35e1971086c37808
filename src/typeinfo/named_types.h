#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <string_view>

// The predefined types, and those of the standard packages, that have a name of their own.
namespace corv::typeinfo {

// The type-description strings of the standard types, by their index.
extern const std::array<std::string_view, 9> kStandardTypes;

struct NamedScalar {
    std::string_view name;
    std::string_view text;  // its type-description string, the name in the counted form

    // The part after the name.
    std::string_view Body() const noexcept;
};

// An array of one dimension whose name is written with or without a constraint.
struct NamedArray {
    std::string_view name;
    std::string_view element;    // the name of a scalar
    std::int32_t first_index;    // of the index type, which ends at 2147483647
    std::string_view unlimited;  // the unconstrained string, if it is a standard type
};

// Subtypes with a name of their own. For an enumeration the range is not kept: its values have the
// positions and texts of the base type.
struct NamedSubtype {
    std::string_view name;
    std::string_view base;
    std::int32_t left = 0;  // of an array; equal bounds mark a scalar
    std::int32_t right = 0;
};
inline constexpr std::int32_t kLowestIndex = std::numeric_limits<std::int32_t>::min();
inline constexpr std::int32_t kLastIndex = std::numeric_limits<std::int32_t>::max();

// Return the row of a name in any letter case, null if there is none.
const NamedScalar* FindNamedScalar(std::string_view name) noexcept;
const NamedArray* FindNamedArray(std::string_view name) noexcept;
const NamedSubtype* FindNamedSubtype(std::string_view name) noexcept;

// Returns the named type, or the first word of a written-out type, that a misspelt word was most
// likely meant to be; empty if none is near.
std::string_view NearestTypeName(std::string_view word) noexcept;

}  // namespace corv::typeinfo
