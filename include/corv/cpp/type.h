#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "corv/cpp/error.h"
#include "corv/platform/cstring.h"
#include "corv/typeinfo/type_info.h"
#include "corv/typeinfo/vhdl_type.h"

namespace corv {

// A VHDL type, which converts its values between text and stored bytes. Copies are cheap: they
// share what was read.
//
//     const corv::Type byte("std_logic_vector(7 downto 0)");
//     byte.Text(byte.Bytes("X\"A5\""));   // 10100101
class Type {
    struct Described {
        CString text;
    };

public:
    struct Field;

    // Reads a subtype indication as VHDL writes it (corv::TypeFromVhdl). Throws Error, with the
    // place, for any other text.
    explicit Type(std::string_view vhdl) : Type(Read(vhdl)) {}

    // Reads a type-description string (docs/formats/type-descriptions.md). Throws Error.
    static Type FromDescription(std::string_view description) {
        return Type(Described{CString(description)});
    }

    // The type-description string, which the C-style operations take.
    std::string Description() const { return std::string(info_->GetTypeInfoString().View()); }

    // The type as VHDL writes it. Throws Error if VHDL cannot express it.
    std::string Vhdl() const {
        CString text;
        if (!TypeToVhdl(info_->GetTypeInfoString(), text)) {
            throw Error("VHDL cannot express the type");
        }
        return std::string(text.View());
    }

    KTypeInfo::EKind Kind() const noexcept { return info_->GetKind(); }
    bool IsScalar() const noexcept { return info_->IsScalar(); }
    // Whether it is a scalar or an array of scalars. Only these have texts and bytes.
    bool IsSimple() const noexcept { return info_->IsSimple(); }
    // Bytes of a stored value of a simple type, 0 of any other.
    std::size_t Size() const noexcept { return static_cast<std::size_t>(info_->GetSimpleSize()); }

    // The elements of an array: how many there are, and their type. Throws Error for other types.
    std::int64_t ElementCount() const noexcept { return info_->GetNbOfElements(); }
    Type Element() const { return Part(info_->GetArrayElementKTypeInfo()); }
    // The fields of a record, in order; none for other types.
    std::vector<Field> Fields() const;
    // The literals of an enumeration by position, as VHDL writes them; none for other types.
    std::vector<std::string> Literals() const {
        std::vector<std::string> literals;
        for (int i = 0; i < info_->GetNbOfValues(); ++i) {
            literals.emplace_back(info_->GetValue(i, true).View());
        }
        return literals;
    }

    // The stored bytes of a value. Throws Error for a text that is not a value of the type.
    std::vector<unsigned char> Bytes(std::string_view value) const {
        std::vector<unsigned char> bytes(Size());
        if (bytes.empty() ||
            !info_->GetBytes(CString(value), bytes.data(), info_->GetSimpleSize(), 2, 0)) {
            throw Error("`" + std::string(value) + "` is not a value of the type");
        }
        return bytes;
    }

    // The text of a stored value. Throws Error for fewer bytes than Size and for bytes that are not
    // a value of the type.
    std::string Text(std::span<const unsigned char> bytes) const {
        const CString text =
            bytes.size() >= Size() ? info_->GetValueString(bytes.data(), 10, 0, -1) : CString();
        if (text.IsEmpty() && (Size() != 0 || !IsSimple())) {
            throw Error("the bytes are not a value of the type");
        }
        return std::string(text.View());
    }

    // The object below, for the C-style operations; it lives as long as a copy of this one.
    const KTypeInfo& Info() const noexcept { return *info_; }

private:
    explicit Type(const Described& description)
        : info_(std::make_shared<KTypeInfo>(description.text)) {
        if (Kind() == KTypeInfo::KindNone) {
            throw Error("`" + std::string(description.text.View()) + "` does not describe a type");
        }
    }
    explicit Type(std::shared_ptr<const KTypeInfo> info) : info_(std::move(info)) {}

    static Described Read(std::string_view vhdl) {
        Described description;
        TypeProblem problem{};
        if (!TypeFromVhdl(std::string(vhdl).c_str(), description.text, &problem)) {
            throw Error(problem.sentence, problem.position, problem.length);
        }
        return description;
    }

    // The type of an element or field is a part of the outermost object, which it keeps alive.
    Type Part(const KTypeInfo& part) const {
        if (part.GetKind() == KTypeInfo::KindNone) {
            throw Error("the type has no elements");
        }
        return Type(std::shared_ptr<const KTypeInfo>(info_, &part));
    }

    std::shared_ptr<const KTypeInfo> info_;
};

struct Type::Field {
    std::string name;
    Type type;
};

inline std::vector<Type::Field> Type::Fields() const {
    std::vector<Field> fields;
    for (int i = 0; i < info_->GetNbOfFields(); ++i) {
        fields.push_back(
            {std::string(info_->GetFieldName(i).View()), Part(info_->GetFieldKTypeInfo(i))});
    }
    return fields;
}

}  // namespace corv
