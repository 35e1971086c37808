// Writes types as VHDL subtype indications, by name where the name alone says it all, so that what
// users read is what they would have written.

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/ascii.h"
#include "typeinfo/named_types.h"
#include "typeinfo/scalar_text.h"
#include "typeinfo/vhdl_range.h"
#include "typeinfo/vhdl_type_text.h"
#include "typeinfo/vhdl_words.h"

namespace corv::typeinfo {
namespace {

// The name alone is not enough: a host may have a type of its own under a standard name.
bool IsNamed(TypeView type, const NamedScalar& row) noexcept {
    return platform::EqualNoCase(type.Name(), row.name) && type.Body() == row.Body();
}

bool AppendEnumeration(std::string& out, TypeView type) {
    const NamedScalar* const row = FindNamedScalar(type.Name());
    if (row && IsNamed(type, *row)) {
        out += row->name;
        return true;
    }
    std::vector<std::string> literals(type.Count());
    for (std::uint32_t i = 0; i < type.Count(); ++i) {
        AppendScalar(literals[i], type, i, {.quoted = true});
        if (literals[i][0] != '\'' && !IsIdentifier(literals[i])) {
            return false;
        }
        out += i == 0 ? "(" : ", ";
        out += literals[i];
    }
    out += ')';
    return !literals.empty() && !FindRepeated({literals.begin(), literals.end()});
}

// Returns whether a type is a named array: its element and its index type must be those of the row.
bool IsNamed(TypeView type, const NamedArray& row) {
    const IndexRange& range = type.RangeAt(0);
    return type.Count() == 1 && IsNamed(type.Element(), *FindNamedScalar(row.element)) &&
           std::min(range.left, range.right) >= row.first_index &&
           (range.constrained || (range.left == row.first_index && range.right == kLastIndex));
}

bool AppendArray(std::string& out, TypeView type) {
    bool is_alike = type.Count() > 0;
    for (std::uint32_t i = 1; i < type.Count(); ++i) {
        is_alike = is_alike && type.RangeAt(i).constrained == type.RangeAt(0).constrained;
    }
    if (!is_alike) {
        return false;
    }
    const std::string_view name = type.Name();
    const NamedArray* const row = FindNamedArray(name.substr(0, name.find('(')));
    const bool named = row && IsNamed(type, *row);
    out += named ? row->name : "array ";
    if (!named || type.RangeAt(0).constrained) {
        for (std::uint32_t i = 0; i < type.Count(); ++i) {
            out += i == 0 ? "(" : ", ";
            AppendIndex(out, type.RangeAt(i));
        }
        out += ')';
    }
    if (named) {
        return true;
    }
    out += " of ";
    return AppendVhdlType(out, type.Element());
}

bool AppendRecord(std::string& out, TypeView type) {
    std::vector<std::string_view> names;
    out += "record ";
    for (std::uint32_t i = 0; i < type.Count(); ++i) {
        names.push_back(type.FieldName(i));
        if (!IsIdentifier(names.back())) {
            return false;
        }
        out += names.back();
        out += " : ";
        if (!AppendVhdlType(out, type.Field(i))) {
            return false;
        }
        out += "; ";
    }
    out += "end record";
    if (IsIdentifier(type.Name())) {
        out += ' ';
        out += type.Name();
    }
    return !names.empty() && !FindRepeated(names);
}

}  // namespace

bool AppendVhdlType(std::string& out, TypeView type) {
    switch (type.Kind()) {
        case KTypeInfo::KindEnum:
            return AppendEnumeration(out, type);
        case KTypeInfo::KindInteger:
        case KTypeInfo::KindFloat:
            AppendNumberType(out, type);
            return true;
        case KTypeInfo::KindArray:
            return AppendArray(out, type);
        case KTypeInfo::KindRecord:
            return AppendRecord(out, type);
        case KTypeInfo::KindNone:
            break;
    }
    return false;
}

}  // namespace corv::typeinfo
