#include "corv/typeinfo/vhdl_type.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "platform/guard.h"
#include "typeinfo/type_text.h"
#include "typeinfo/type_tree.h"
#include "typeinfo/vhdl_type_text.h"

namespace corv {
namespace {

using typeinfo::VhdlType;

bool AppendTypeText(std::string& out, const VhdlType& type);

void AppendEnum(std::string& out, const VhdlType& type) {
    if (type.words) {
        typeinfo::AppendWordEnum(out, type.name, type.literals);
        return;
    }
    std::string characters;
    for (const std::string_view literal : type.literals) {
        characters += literal[1];
    }
    typeinfo::AppendCharacterEnum(out, type.name, characters);
}

bool AppendArray(std::string& out, const VhdlType& type) {
    const bool constrained = std::all_of(type.ranges.begin(), type.ranges.end(),
                                         [](const auto& range) { return range.constrained; });
    typeinfo::AppendArrayHead(
        out,
        constrained ? typeinfo::ConstrainedName(type.name, type.ranges) : std::string(type.name),
        type.ranges);
    return AppendTypeText(out, *type.element);
}

bool AppendRecord(std::string& out, const VhdlType& type) {
    typeinfo::AppendRecordHead(out, type.name, type.fields.size());
    return std::all_of(type.fields.begin(), type.fields.end(), [&](const auto& field) {
        out += &field == type.fields.data() ? "" : " ";
        out += field.name;
        out += ' ';
        return AppendTypeText(out, *field.type);
    });
}

// Appends the type-description string. Returns false as soon as it is too long: "a, b, c : record
// ..." shares the type of its fields, so a short text can have a description that grows
// exponentially with its nesting.
bool AppendTypeText(std::string& out, const VhdlType& type) {
    out += type.ready;
    bool appended = true;
    switch (type.kind) {
        case KTypeInfo::KindNone:
            break;
        case KTypeInfo::KindEnum:
            AppendEnum(out, type);
            break;
        case KTypeInfo::KindInteger:
            typeinfo::AppendInteger(out, type.name, type.ranges[0]);
            break;
        case KTypeInfo::KindFloat:
            typeinfo::AppendFloat(out, type.name, type.real_range);
            break;
        case KTypeInfo::KindArray:
            appended = AppendArray(out, type);
            break;
        case KTypeInfo::KindRecord:
            appended = AppendRecord(out, type);
            break;
    }
    return appended && out.size() <= typeinfo::kMaxTextLength;
}

bool FromVhdl(std::string_view text, CString& type, TypeProblem& problem) {
    typeinfo::VhdlTypes types = typeinfo::ReadVhdlType(text);
    if (!types.whole) {
        problem = std::move(types.problem);
        return false;
    }
    std::string out;
    if (!AppendTypeText(out, *types.whole)) {
        problem = {0, text.size(), "the description of this type is longer than 16 MiB"};
        return false;
    }
    type = CString(std::move(out));
    return true;
}

}  // namespace

bool TypeFromVhdl(const char* text, CString& type, TypeProblem* problem) noexcept {
    // this sentence is short enough for std::string not to allocate memory
    TypeProblem found{0, 0, "out of memory"};
    const bool read =
        platform::Guarded(false, [&] { return FromVhdl(text ? text : "", type, found); });
    if (!read && problem) {
        *problem = std::move(found);
    }
    return read;
}

bool TypeToVhdl(const char* type, CString& text) noexcept {
    return platform::Guarded(false, [&] {
        const auto tree = typeinfo::ReadTree(type ? type : "");
        std::string out;
        if (!tree || !typeinfo::AppendVhdlType(out, typeinfo::TypeView(*tree))) {
            return false;
        }
        text = CString(std::move(out));
        return true;
    });
}

}  // namespace corv
