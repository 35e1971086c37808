#pragma once

#include <cstddef>
#include <string>

#include "corv/platform/cstring.h"
#include "corv/platform/export.h"

namespace corv {

// Why a text can't be read as a type.
struct TypeProblem {
    std::size_t position;  // of the first byte, from 0
    std::size_t length;    // in bytes; 0 points at the end of the text
    std::string sentence;  // what is wrong and what would do, in one sentence without a full stop
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
// Bounds are numbers, not expressions, and a range holds at least one value: null ranges are not
// read, nor are ranges of enumerations. Two things are read that VHDL itself is stricter about:
// whole numbers as bounds of a real, and a time's unit right after its number. The index of an
// array may have its type ("natural range 7 downto 0") or be "open"; libraries and packages may
// stand before names. Blanks, line breaks and comments stand anywhere between words, a semicolon
// may end the text; letter case counts in extended identifiers and character literals only. No name
// is a reserved word of VHDL-2008, has two underscores in a row or one at its end.
//
// Enumerations and arrays written out have no name of their own, a record has the one after
// "end record". Boolean and severity_level are enumerations; time, stored as a double, counts
// femtoseconds. X01, X01Z, UX01, UX01Z and "resolved std_ulogic" are read as std_logic, which they
// share positions with, and float32, float64 and float128 as float with their bounds. The bounds of
// reals and times are kept to six digits. A bound of six digits may have been rounded: values that
// round to it count as within; a shorter one is taken as exact.
//
// False, with `type` untouched and the first problem told, for any other text, and when memory
// runs out. A null text is an empty one.
//
//     corv::TypeFromVhdl("std_logc", type, &problem);
//         // position 0, length 8: "unknown type `std_logc`; did you mean `std_logic`?"
CORV_API bool TypeFromVhdl(const char* text, CString& type,
                           TypeProblem* problem = nullptr) noexcept;

// Writes a type as a VHDL subtype indication that TypeFromVhdl reads. Types of the names above are
// written by name, all others written out; an unconstrained array that is written out has an index
// of type natural, positive or integer. Times have the largest unit that leaves no fraction. False,
// with `text` untouched, for a string that is not a type or one VHDL has no words for: an
// enumeration, array or record without literals, dimensions or fields, an array with constrained
// and unconstrained dimensions, names that are no identifiers or stand twice; also when memory runs
// out.
CORV_API bool TypeToVhdl(const char* type, CString& text) noexcept;

}  // namespace corv
