#pragma once

#include <cstdint>
#include <memory>

#include "corv/platform/cstring.h"
#include "corv/platform/export.h"

namespace corv::typeinfo {
class TypeAccess;
struct TypeNode;
struct TypeTree;
}  // namespace corv::typeinfo

// One VHDL type, read from its type-description string: what kind it is, how large its values are,
// its elements, fields and literals, and the way between a value's text and its stored bytes.
//
//     const KTypeInfo byte("a#28#std_logic_vector(7 downto 0)1 ricd7 0 e#9#std_logicc9 UX01ZWLH-");
//     byte.GetNbOfElements();                        // 8
//     byte.GetArrayElementKTypeInfo().GetValue(4);   // "Z"
//
// The string is read once. The types of elements and fields are parts of the outermost object and
// live as long as it does; asking for them costs neither reading nor memory. A question that does
// not apply to the type (an index out of range, a field of an array) returns 0, an empty text or
// the invalid type; so does every question to an object made from a string that is not a type.
//
// A stored value is a block of bytes: a scalar in GetScalarSize bytes, the elements of a simple
// array one after the other, each in its scalar's size. Scalars are little-endian: an enumeration
// stores the position number, an integer its two's complement, a floating-point type a double.
//
// If out of memory, texts are empty and conversions fail; the object stays usable. One thread at a
// time may ask for strings.
class CORV_API KTypeInfo {
public:
    enum EKind {
        KindNone,  // not a type
        KindEnum,
        KindInteger,
        KindFloat,
        KindArray,
        KindRecord,
    };
    enum EDirection { To, Downto };

    // Reads a type-description string. The kind is KindNone if CheckTypeInfo does not accept it or
    // if out of memory.
    explicit KTypeInfo(const CString& text) noexcept;
    KTypeInfo(const KTypeInfo&) = delete;
    KTypeInfo& operator=(const KTypeInfo&) = delete;
    ~KTypeInfo();

    // Returns whether the string is one type and nothing else. Counts must match what follows,
    // integer bounds must fit into 32 bits, the ranges of arrays must be integer ranges, and names
    // of fields and literals must not be empty. A text longer than 16 MiB, with more than 64 levels
    // (a scalar is one), or with a line break or a zero byte is refused.
    static bool CheckTypeInfo(const CString& text) noexcept;

    // Returns the string that the object was made from, even if it is not a type; for an element or
    // field, its part of that string. The string lives as long as this object.
    const CString& GetTypeInfoString() const noexcept;

    EKind GetKind() const noexcept;
    // Returns the type's name as in the string, for an array including the constraint; it may be
    // empty.
    CString GetTypeIdentifier() const noexcept;

    // Returns whether this is an enumeration, integer or floating-point type.
    bool IsScalar() const noexcept;
    // Returns whether this is a scalar or an array of scalars, whose values are stored as one
    // block.
    bool IsSimple() const noexcept;
    // Returns the bytes of one scalar: 4 for an integer, 8 for a floating-point type, and 1, 2 or 4
    // for an enumeration of up to 256, up to 65,536 or more literals; 0 for arrays and records.
    int GetScalarSize() const noexcept;
    // Returns the bytes of a whole value of a simple type, at most 2147483647; 0 for other types.
    int GetSimpleSize() const noexcept;

    // Returns the number of all elements of an array; every dimension counts |right - left| + 1.
    std::int64_t GetNbOfElements() const noexcept;
    int GetNbOfDimensions() const noexcept;
    // Stores the bounds of a dimension, counted from 0, as written; 0, 0 and To if there is no such
    // dimension.
    void GetArrayDimensionRanges(int dimension, int& left, int& right,
                                 EDirection& direction) const noexcept;
    CString GetArrayElementTypeInfo() const noexcept;
    const KTypeInfo& GetArrayElementKTypeInfo() const noexcept;

    // Return the number of a record's fields, and the name and type of each, counted from 0.
    int GetNbOfFields() const noexcept;
    CString GetFieldName(int field) const noexcept;
    CString GetFieldTypeInfo(int field) const noexcept;
    const KTypeInfo& GetFieldKTypeInfo(int field) const noexcept;

    // Return the number of an enumeration's literals, and each by its position from 0: as written
    // in the list (0, 'A, idle) or, with the flag, as VHDL writes it ('0', 'A', idle).
    int GetNbOfValues() const noexcept;
    CString GetValue(int position, bool as_vhdl = false) const noexcept;

    // Converts the text of a value of a simple type to `size` bytes at the target. It reads what
    // GetValueString writes, and VHDL literals. Returns false, with the target unchanged, for a
    // text that is not a value of the type, for a value out of its range, for a size below
    // GetSimpleSize, and for types that are not simple. The last two arguments are reserved; pass 2
    // and 0.
    //
    //     enumeration        idle, IDLE, 1, '1'; std_logic also x for X
    //     integer            -12, 1_000, 1e3, 16#FF#, 2#1010
    //     floating point     1.5, -2, 1e-9
    //     array of scalars   01XZ  "01XZ"  X"1F"  O"17"  B"01"  (1,2,3)
    //
    // An array is read as plain characters whenever there are exactly as many as elements and each
    // of them is a literal.
    bool GetBytes(const CString& text, unsigned char* target, int size, int reserved,
                  unsigned int reserved_too) const noexcept;

    // Returns the text of a stored value of a simple type; `bytes` points to GetSimpleSize bytes.
    // The text is empty for a position outside the enumeration, for a double that is not a number,
    // and for types that are not simple.
    //
    // An array whose values are all one-character literals is written as those (01XZ), any other as
    // (a,b,c); several dimensions are one list, the last index running fastest. An integer is
    // written in decimal or, for radix 2, 8 and 16, as a based literal (16#FF#); elements of an
    // array always in decimal. A floating-point value is the shortest decimal text that reads back
    // to it, so a whole number has no point (2, 1e+20). Option 2 puts one-character literals in
    // apostrophes and arrays of them in double quotes. The last argument is reserved; pass -1.
    CString GetValueString(const unsigned char* bytes, int radix, unsigned int option,
                           int reserved) const noexcept;

private:
    friend class corv::typeinfo::TypeAccess;

    KTypeInfo() noexcept;
    static const KTypeInfo& Invalid() noexcept;
    void Read();

    std::unique_ptr<corv::typeinfo::TypeTree> owned_;  // none in elements and fields
    const corv::typeinfo::TypeTree* tree_ = nullptr;   // none in an invalid type
    const corv::typeinfo::TypeNode* node_ = nullptr;
    mutable std::unique_ptr<CString> text_;  // of elements and fields: made at the first question
};
