#pragma once

#include <cstddef>
#include <string>

#include "corv/platform/cstring.h"
#include "corv/platform/export.h"

namespace corv {

// Why a text cannot be read as a type.
struct TypeProblem {
    std::size_t position;  // of the first byte, from 0
    std::size_t length;    // in bytes; 0 points at the end of the text
    std::string sentence;  // what is wrong and what would be right, without a full stop
};

// Makes a type-description string from a VHDL subtype indication:
//
//     std_logic      boolean   natural   time        character        ieee.numeric_std.signed
//     std_logic_vector(7 downto 0)       string(1 to 8)               bit_vector
//     integer range -8 to 7              real range 0.0 to 1.0        time range 0 ns to 1 us
//     (idle, run, done)                  ('0', '1', 'Z')
//     array (0 to 3) of unsigned(7 downto 0)                array (natural range <>) of bit
//     record a, b : std_logic; c : bit_vector(3 downto 0); end record
//
// Bounds are numbers, not expressions, and a range must not be empty; ranges of enumerations are
// not read. VHDL itself is stricter in two points: whole numbers are accepted as bounds of a real,
// and a time's unit directly after its number. The index of an array may have its type ("natural
// range 7 downto 0") or be "open"; names may be prefixed with libraries and packages. Blanks, line
// breaks and comments are allowed anywhere between words, and a semicolon may end the text; letter
// case matters only in extended identifiers and character literals. A name must not be a reserved
// word of VHDL-2008, have two underscores in a row or end with one.
//
// Enumerations and arrays that are written out have no name of their own; a record has the one
// after "end record". Boolean and severity_level are enumerations; time, stored as a double, is in
// femtoseconds. X01, X01Z, UX01, UX01Z and "resolved std_ulogic" are read as std_logic, with which
// they share positions, and float32, float64 and float128 as float with their bounds. The bounds of
// reals and times are kept to six digits. A bound of six digits may have been rounded, so values
// that round to it count as within; a shorter one is exact.
//
// For any other text, and if out of memory, it returns false, leaves `type` unchanged and stores
// the first problem in `*problem` unless that is null. A null text counts as empty.
//
//     corv::TypeFromVhdl("std_logc", type, &problem);
//         // position 0, length 8: "unknown type `std_logc`; did you mean `std_logic`?"
CORV_API bool TypeFromVhdl(const char* text, CString& type,
                           TypeProblem* problem = nullptr) noexcept;

// Writes a type as a VHDL subtype indication that TypeFromVhdl reads. Types with the names above
// are written by name, all others are written out; an unconstrained array that is written out has
// an index of type natural, positive or integer. Times are in the largest unit that leaves no
// fraction. Returns false, with `text` unchanged, for a string that is not a type; for a type that
// VHDL cannot express: an enumeration, array or record without literals, dimensions or fields, an
// array with both constrained and unconstrained dimensions, or names that are not identifiers or
// occur twice; and if out of memory.
CORV_API bool TypeToVhdl(const char* type, CString& text) noexcept;

}  // namespace corv
