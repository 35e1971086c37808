#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/find/value.h"
#include "host/find/words.h"

namespace corv::find {

// One side of a comparison: a signal or a literal.
struct Operand {
    Word word;
    bool before = false;  // its value just before each moment
};

// A condition as it is written. What it needs of its parts is not checked here.
struct Node {
    enum class Kind {
        Level,    // a signal of one bit, or a boolean
        Compare,  // `left` and `right` by `relation`
        Unknown,  // a bit of the signal `left`
        Changes,  // of the signal `left`
        Rising,   // of the part, falling likewise
        Falling,
        Before,     // the part, just before
        StableFor,  // the signal `left` for `time`
        HeldFor,    // the part for `time`
        Within,     // the first part within `time` of the second
        Not,
        And,
        Or,
        Xor,
    };
    enum class Side { Around, After, Before };  // where the other event of `Within` is

    Kind kind = Kind::Level;
    std::size_t position = 0;
    std::size_t length = 0;
    std::vector<std::unique_ptr<Node>> parts;
    Operand left, right;
    Relation relation = Relation::Equal;
    std::int64_t time = 0;  // picoseconds
    Side side = Side::Around;
    bool negated = false;  // not within
};

// Reads a condition:
//
//     condition  = xor { "or" xor }
//     xor        = and { "xor" and }
//     and        = factor { "and" factor }
//     factor     = "not" factor | primary { ending }
//     ending     = "for" TIME | ["not"] "within" TIME ("of" | "before" | "after") primary
//     primary    = "(" condition ")" | ("rising" | "falling" | "before") "(" condition ")"
//                | ("changes" | "unknown") "(" SIGNAL ")" | operand [relation operand] | SIGNAL
//                "stable" "for" TIME
//     relation   = "=" | "/=" | "<" | "<=" | ">" | ">=" | "?="
//     operand    = SIGNAL | LITERAL | "before" "(" SIGNAL ")"
//
// Throws Refusal. The text must outlive the result.
std::unique_ptr<Node> ReadCondition(std::string_view text);

}  // namespace corv::find
