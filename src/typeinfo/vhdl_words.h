#pragma once

#include <string_view>
#include <vector>

#include "platform/ascii.h"

// VHDL text as words. They are separated by blanks (including the no-break space, in Latin-1 and
// UTF-8), line breaks and comments (from "--" to the end of the line, or between "/*" and "*/").
namespace corv::typeinfo {

enum class WordKind {
    Name,       // a basic identifier or a keyword
    Extended,   // \an extended identifier\, on one line
    Character,  // 'c'
    Number,     // begins with a digit: 7, 1_000, 1.5e-3, 16#FF#, 10ns
    Symbol,     // one character, or "<>"
    Unclosed,   // an extended identifier or a comment without its end
    End,
};

struct Word {
    WordKind kind;
    std::string_view text;  // empty, at the end of the text, for End

    // Returns whether this is the given keyword (in lower case) or symbol.
    bool Is(std::string_view word) const noexcept {
        return (kind == WordKind::Name || kind == WordKind::Symbol) &&
               platform::EqualNoCase(text, word);
    }
};

class VhdlWords {
public:
    explicit VhdlWords(std::string_view text) noexcept : rest_(text), next_(Read()) {}

    // Next returns the next word without taking it; Take returns it and moves on.
    const Word& Next() const noexcept { return next_; }
    Word Take() noexcept;

private:
    Word Read() noexcept;

    std::string_view rest_;
    Word next_;
};

// What a name must not be, in any letter case: a reserved word of VHDL-2008, or a name with two
// underscores in a row or one at its end.
bool IsReserved(std::string_view name) noexcept;
bool HasWrongUnderscore(std::string_view name) noexcept;

// Return whether the whole text is an identifier that type descriptions can contain: an extended
// one without blanks, or a name that is neither reserved nor has wrong underscores.
bool IsIdentifier(const Word& word) noexcept;
bool IsIdentifier(std::string_view text) noexcept;

// Returns the first identifier or character literal that repeats an earlier one, null if there is
// none. Letter case matters only in extended identifiers and character literals.
const std::string_view* FindRepeated(const std::vector<std::string_view>& names);

}  // namespace corv::typeinfo
