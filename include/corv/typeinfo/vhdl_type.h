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
// Bounds are numbers. Blanks, line breaks and comments stand anywhere between words, a semicolon
// may end the text; letter case counts in extended identifiers and character literals only.
// Enumerations and arrays written out have no name of their own, a record has the one behind
// "end record". Boolean and severity_level are enumerations; time, stored as a double, counts
// femtoseconds.
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
// of type natural, positive or integer. False, with `text` untouched, for a string that is not a
// type or one VHDL has no words for: an enumeration or array without literals or dimensions, names
// that are no identifiers or stand twice; also when memory runs out.
CORV_API bool TypeToVhdl(const char* type, CString& text) noexcept;

}  // namespace corv
