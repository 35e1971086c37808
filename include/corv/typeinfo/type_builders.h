#pragma once

#include <cstdint>
#include <memory>

#include "corv/platform/export.h"
#include "corv/platform/result.h"

// Writing type-description strings.

// A literal of an enumeration: an owned text, or none. Setting a text that is no longer than the
// one held reuses its storage; should memory run out, the object is left without text. A null text
// is no text.
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
    // The text, null when there is none; valid until the next change.
    const char* Get() const noexcept { return text_.get(); }
    // Its length in characters, 0 without text.
    int GetLen() const noexcept;

private:
    std::unique_ptr<char[]> text_;
};

// A field of a record: its name and its type-description string, each kept as TEnumValue keeps a
// text.
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
// ascending (to), any other descending (downto), one of a single element too.
struct TArrayRange {
    std::int32_t left;
    std::int32_t right;
};

// The builders write a type-description string and its terminating zero into a buffer of `*size`
// characters. With a null buffer they store the size needed in `*size` instead, and give S_OK. A
// buffer that is too small, a null size, name, list (even of no entries) or entry gives
// E_INVALIDARG; when memory runs out the result is E_OUTOFMEMORY. After a failure the buffer and
// the size are as they were.
//
//     std::uint32_t size = 0;
//     CreateStdTypeInfo(1, nullptr, &size);   // size is 26
//     std::string text(size, '\0');
//     CreateStdTypeInfo(1, text.data(), &size);   // "e#9#std_logicc9 UX01ZWLH-"

// A standard type: 0 bit, 1 std_logic, 2 std_ulogic, 3 integer, 4 real, 5 character, and without
// constraint 6 bit_vector, 7 std_logic_vector, 8 std_ulogic_vector; another index is E_INVALIDARG.
CORV_API HRESULT CreateStdTypeInfo(int index, char* buffer, std::uint32_t* size) noexcept;

// An array; the ranges stand behind its name, as "bus(7 downto 0)". The element type is copied
// unchanged. E_INVALIDARG also when the name with its ranges is longer than 259 characters.
CORV_API HRESULT CreateArrayTypeInfo(const char* name, const TArrayRange* ranges,
                                     std::uint32_t count, const char* element, char* buffer,
                                     std::uint32_t* size) noexcept;

// A record. The types of the fields are copied unchanged.
CORV_API HRESULT CreateRecordTypeInfo(const char* name, const TRecordField* fields,
                                      std::uint32_t count, char* buffer,
                                      std::uint32_t* size) noexcept;

// An enumeration. When every literal is one character long, they stand as a list of characters;
// else as words, where the literal 'A' must be given with its first apostrophe alone ('A).
CORV_API HRESULT CreateEnumTypeInfo(const char* name, const TEnumValue* literals,
                                    std::uint32_t count, char* buffer,
                                    std::uint32_t* size) noexcept;
