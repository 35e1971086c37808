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
// live as long as it does; asking for them costs neither reading nor memory. A question that the
// type has no answer to (an index out of range, a field of an array) gives 0, empty text or the
// invalid type, as does an object made from a string that is not a type.
//
// A stored value is a block of bytes: a scalar in GetScalarSize bytes, the elements of a simple
// array one after the other, each in its scalar's size. Scalars are little-endian: an enumeration
// stores the position number, an integer its two's complement, a floating-point type a double.
//
// When memory runs out, texts come back empty and conversions fail; the object stays usable. One
// thread at a time may ask for strings.
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

    // Reads a type-description string; the kind is KindNone unless CheckTypeInfo accepts it (and
    // when memory runs out).
    explicit KTypeInfo(const CString& text) noexcept;
    KTypeInfo(const KTypeInfo&) = delete;
    KTypeInfo& operator=(const KTypeInfo&) = delete;
    ~KTypeInfo();

    // Whether the string is one type and nothing else. Counts must match what follows, integer
    // bounds fit 32 bits, the ranges of arrays be integer ranges; names of fields and literals are
    // not empty. A text is refused when it is longer than 16 MiB, nests deeper than 64 levels (a
    // scalar is one) or holds a line break or a zero byte.
    static bool CheckTypeInfo(const CString& text) noexcept;

    // The string the object was made from, also when it is no type; for an element or field its
    // part of that string. Lives as long as this object.
    const CString& GetTypeInfoString() const noexcept;

    EKind GetKind() const noexcept;
    // The type's name as the string has it, for an array with the constraint; may be empty.
    CString GetTypeIdentifier() const noexcept;

    // An enumeration, integer or floating-point type.
    bool IsScalar() const noexcept;
    // A scalar, or an array of scalars: what is stored as one block.
    bool IsSimple() const noexcept;
    // Bytes of one scalar: 4 for an integer, 8 for a floating-point type, 1, 2 or 4 for an
    // enumeration of up to 256, up to 65,536 or more literals; 0 for arrays and records.
    int GetScalarSize() const noexcept;
    // Bytes of a whole value of a simple type, at most 2147483647; 0 for other types.
    int GetSimpleSize() const noexcept;

    // All elements of an array, every dimension counted |right - left| + 1.
    std::int64_t GetNbOfElements() const noexcept;
    int GetNbOfDimensions() const noexcept;
    // The bounds of a dimension, counted from 0, as written. Without such a dimension 0, 0, To.
    void GetArrayDimensionRanges(int dimension, int& left, int& right,
                                 EDirection& direction) const noexcept;
    CString GetArrayElementTypeInfo() const noexcept;
    const KTypeInfo& GetArrayElementKTypeInfo() const noexcept;

    // The fields of a record, counted from 0.
    int GetNbOfFields() const noexcept;
    CString GetFieldName(int field) const noexcept;
    CString GetFieldTypeInfo(int field) const noexcept;
    const KTypeInfo& GetFieldKTypeInfo(int field) const noexcept;

    // The literals of an enumeration by position, from 0: as written in the list (0, 'A, idle) or,
    // with the flag, as VHDL writes them ('0', 'A', idle).
    int GetNbOfValues() const noexcept;
    CString GetValue(int position, bool as_vhdl = false) const noexcept;

    // Reads the text of a value of a simple type into `size` bytes at the target: what
    // GetValueString writes, and VHDL literals. False, with the target untouched, for a text that
    // is not a value of the type, a value out of its range, a size below GetSimpleSize and for
    // other types. The last two arguments are reserved; pass 2 and 0.
    //
    //     enumeration        idle, IDLE, 1, '1'; std_logic also x for X
    //     integer            -12, 1_000, 1e3, 16#FF#, 2#1010
    //     floating point     1.5, -2, 1e-9
    //     array of scalars   01XZ  "01XZ"  X"1F"  O"17"  B"01"  (1,2,3)
    //
    // An array is read as its plain characters whenever their number is the number of elements and
    // each is a literal.
    bool GetBytes(const CString& text, unsigned char* target, int size, int reserved,
                  unsigned int reserved_too) const noexcept;

    // The text of a stored value of a simple type; `bytes` points at GetSimpleSize of them. Empty
    // for a position outside the enumeration, a double that is not a number, and other types.
    //
    // An array whose values are all one-character literals is written as those (01XZ), any other
    // as (a,b,c); several dimensions are one list, the last index running fastest. An integer is
    // written in decimal or, for radix 2, 8 and 16, as a based literal (16#FF#); elements of an
    // array always in decimal. A floating-point value is the shortest decimal text that reads back
    // to it, so a whole one has no point (2, 1e+20). Option 2 puts one-character literals in
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
