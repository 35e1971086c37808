#pragma once

#include <cstdint>
#include <memory>

#include "corv/platform/export.h"
#include "corv/platform/result.h"

// Builders of type-description strings (docs/formats/type-descriptions.md).

// A literal of an enumeration: an owned text, or none. Setting a text that is not longer than the
// present one reuses its storage; if out of memory, the object is left without a text. A null text
// means no text.
class CORV_API TEnumValue {
public:
    TEnumValue() noexcept = default;
    TEnumValue(const char* text) noexcept { Set(text); }  // NOLINT(google-explicit-constructor)
    TEnumValue(const TEnumValue& other) noexcept { Set(other.Get()); }
    TEnumValue& operator=(const TEnumValue& other) noexcept {
        Set(other.Get());
        return *this;
    }

    void Set(const char* text) noexcept;
    // Returns the text, null if there is none; valid until the next change.
    const char* Get() const noexcept { return text_.get(); }
    // Returns its length in characters, 0 without a text.
    int GetLen() const noexcept;

private:
    std::unique_ptr<char[]> text_;
};

// A field of a record: its name and its type-description string, each stored as in TEnumValue.
class CORV_API TRecordField {
public:
    TRecordField() noexcept = default;
    TRecordField(const char* name, const char* type) noexcept { SetBoth(name, type); }
    TRecordField(const TRecordField& other) noexcept {
        SetBoth(other.GetFieldName(), other.GetTypeInfo());
    }
    TRecordField& operator=(const TRecordField& other) noexcept {
        SetBoth(other.GetFieldName(), other.GetTypeInfo());
        return *this;
    }

    void SetFieldName(const char* name) noexcept { name_.Set(name); }
    void SetTypeInfo(const char* type) noexcept { type_.Set(type); }
    void SetBoth(const char* name, const char* type) noexcept {
        SetFieldName(name);
        SetTypeInfo(type);
    }
    const char* GetFieldName() const noexcept { return name_.Get(); }
    const char* GetTypeInfo() const noexcept { return type_.Get(); }

private:
    TEnumValue name_;
    TEnumValue type_;
};

// The bounds of one dimension as VHDL writes them. A left bound below the right one makes the range
// ascending (to); otherwise it is descending (downto), even with a single element.
struct TArrayRange {
    std::int32_t left;
    std::int32_t right;
};

// The builders write a type-description string and its terminating zero into a buffer of `*size`
// characters. With a null buffer they store the required size in `*size` instead and return S_OK.
// They return E_INVALIDARG for a buffer that is too small and for a null size, name, list (even an
// empty one) or entry, and E_OUTOFMEMORY if out of memory. After a failure the buffer and the size
// are unchanged.
//
//     std::uint32_t size = 0;
//     CreateStdTypeInfo(1, nullptr, &size);   // size is 26
//     std::string text(size, '\0');
//     CreateStdTypeInfo(1, text.data(), &size);   // "e#9#std_logicc9 UX01ZWLH-"

// Writes a standard type: 0 bit, 1 std_logic, 2 std_ulogic, 3 integer, 4 real, 5 character, and,
// unconstrained, 6 bit_vector, 7 std_logic_vector, 8 std_ulogic_vector. Returns E_INVALIDARG for
// any other index.
CORV_API HRESULT CreateStdTypeInfo(int index, char* buffer, std::uint32_t* size) noexcept;

// Writes an array; its ranges become part of its name, as in "bus(7 downto 0)". The element type is
// copied unchanged. Also returns E_INVALIDARG if the name with its ranges is longer than 259
// characters.
CORV_API HRESULT CreateArrayTypeInfo(const char* name, const TArrayRange* ranges,
                                     std::uint32_t count, const char* element, char* buffer,
                                     std::uint32_t* size) noexcept;

// Writes a record. The types of the fields are copied unchanged.
CORV_API HRESULT CreateRecordTypeInfo(const char* name, const TRecordField* fields,
                                      std::uint32_t count, char* buffer,
                                      std::uint32_t* size) noexcept;

// Writes an enumeration. If every literal is one character long, they are written as a list of
// characters; otherwise as words, for which the literal 'A' must be passed with only its first
// apostrophe ('A).
CORV_API HRESULT CreateEnumTypeInfo(const char* name, const TEnumValue* literals,
                                    std::uint32_t count, char* buffer,
                                    std::uint32_t* size) noexcept;
