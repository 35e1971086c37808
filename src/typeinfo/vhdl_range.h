#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "typeinfo/named_types.h"
#include "typeinfo/type_text.h"
#include "typeinfo/type_tree.h"
#include "typeinfo/vhdl_cursor.h"

// Reader and writer of the ranges of VHDL subtype indications.
//
//     number = number-type [ "range" range ]
//     index  = range | index-type [ "range" ( range | "<>" ) ]
//     index-type = { identifier "." } ( "integer" | "natural" | "positive" )
//     range  = bound ( "to" | "downto" ) bound
//     bound  = [ "+" | "-" ] number [ time-unit ]
//
// Bounds are numbers as number_text.h reads them, with based literals closed by "#". Those of a
// time have a unit, which may follow the number directly. A range must not be empty.
namespace corv::typeinfo {

// Returns whether the type is a time, which is stored in fs.
bool IsTime(const NamedScalar& row) noexcept;

// The range of a named integer or floating-point type.
template <class Bound>
Range<Bound> RangeOf(const NamedScalar& row);

// What the bounds must be: values of a number type.
template <class Bound>
struct Limits {
    std::string_view name;
    Range<Bound> range;
    bool times = false;
};

// Reads a range, or records the problem and returns false.
template <class Bound>
bool ReadRange(VhdlCursor& cursor, const Limits<Bound>& limits, Range<Bound>& range);

// Takes a name and the libraries and packages before it; `name` becomes its last part. The next
// word must be a name.
bool TakePrefixedName(VhdlCursor& cursor, std::string_view& name);

// What an index must be, and how messages call it.
struct IndexNeeds {
    Limits<std::int32_t> limits;
    std::string_view expected;
    bool may_be_open = false;
};

// Reads the index of an array; "<>" makes it unconstrained.
bool ReadIndex(VhdlCursor& cursor, const IndexNeeds& needs, IndexRange& range);

// Append a range in the direction of its bounds: for an array's dimension, and for a number type
// after its name, unless the name alone implies the range. A type that is not a named one is
// written as a range of integer or real.
void AppendIndex(std::string& out, const IndexRange& range);
void AppendNumberType(std::string& out, TypeView type);

// Returns the index type whose range begins there.
std::string_view IndexTypeName(std::int32_t first_index) noexcept;

}  // namespace corv::typeinfo
