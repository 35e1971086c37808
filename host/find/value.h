#pragma once

#include <string>

namespace corv::find {

// A value as conditions compare it.
struct Value {
    enum class Kind {
        None,    // not driven yet, or of a kind that can't be compared
        Bits,    // elements of logic, the most significant first, one of a scalar
        Number,  // integers, reals and physical values, these in their primary unit
        Text,    // a literal of an enumeration, or the characters of a string
    };

    Kind kind = Kind::None;
    std::string text;        // of bits and texts
    bool is_signed = false;  // of bits: two's complement
    double number = 0;       // also the position of an enumeration's literal; -1 of other texts
};

enum class Relation {
    Equal,
    NotEqual,
    Less,
    LessOrEqual,
    Greater,
    GreaterOrEqual,
    Matching,  // VHDL's ?=
};

// Whether two values are in a relation. Bits are equal when their characters are, as in VHDL, the
// shorter one filled up; they are ordered as numbers, literals by their position. With `Matching`,
// `-` stands for any value and L and H count as 0 and 1.
//
// False whatever the relation when a value is missing, and for an order when a bit is none of 0, 1,
// L and H, or a number is NaN.
bool Holds(const Value& left, Relation relation, const Value& right);

}  // namespace corv::find
