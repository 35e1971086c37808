#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "typeinfo/named_types.h"
#include "typeinfo/type_text.h"
#include "typeinfo/type_tree.h"
#include "typeinfo/vhdl_cursor.h"

// The ranges of VHDL subtype indications, their reader and their writer.
//
//     number = number-type [ "range" range ]
//     index  = range | index-type [ "range" ( range | "<>" ) ]
//     index-type = { identifier "." } ( "integer" | "natural" | "positive" )
//     range  = bound ( "to" | "downto" ) bound
//     bound  = [ "+" | "-" ] number [ time-unit ]
//
// Bounds are numbers as number_text.h reads them, based literals with their closing sign; those of
// a time have a unit, which may stand right behind the number. A range holds at least one value.
namespace corv::typeinfo {

// Whether the type is a time, stored in fs.
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

// Reads a range; the problem is told when it can't be read.
template <class Bound>
bool ReadRange(VhdlCursor& cursor, const Limits<Bound>& limits, Range<Bound>& range);

// Takes a name and the libraries and packages in front of it, of which the last part stays. The
// next word is a name.
bool TakePrefixedName(VhdlCursor& cursor, std::string_view& name);

// What an index must be, and the words for it.
struct IndexNeeds {
    Limits<std::int32_t> limits;
    std::string_view expected;
    bool may_be_open = false;
};

// Reads the index of an array; "<>" makes it unconstrained.
bool ReadIndex(VhdlCursor& cursor, const IndexNeeds& needs, IndexRange& range);

// Append a range, in the direction that its bounds have: of an array's dimension; of a number type
// behind its name, when the name alone doesn't tell it. A type that is none of the named ones is
// written as a range of integer or real.
void AppendIndex(std::string& out, const IndexRange& range);
void AppendNumberType(std::string& out, TypeView type);

// The type of indices that begin there.
std::string_view IndexTypeName(std::int32_t first_index) noexcept;

}  // namespace corv::typeinfo
