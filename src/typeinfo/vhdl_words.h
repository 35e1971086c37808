#pragma once

#include <string_view>
#include <vector>

#include "platform/ascii.h"

// VHDL text as words. Blanks (the no-break space among them, in Latin-1 and UTF-8), line breaks and
// comments (from "--" to the end of the line, or between "/*" and "*/") separate them.
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

    // A keyword in lower case or a symbol.
    bool Is(std::string_view word) const noexcept {
        return (kind == WordKind::Name || kind == WordKind::Symbol) &&
               platform::EqualNoCase(text, word);
    }
};

class VhdlWords {
public:
    explicit VhdlWords(std::string_view text) noexcept : rest_(text), next_(Read()) {}

    // The word that stands next; the same, and the one behind it stands next from then on.
    const Word& Next() const noexcept { return next_; }
    Word Take() noexcept;

private:
    Word Read() noexcept;

    std::string_view rest_;
    Word next_;
};

// What no name may be, in any letter case: one of the reserved words of VHDL-2008; with two
// underscores in a row or one at its end.
bool IsReserved(std::string_view name) noexcept;
bool HasWrongUnderscore(std::string_view name) noexcept;

// Whether the whole text is an identifier that type descriptions can hold: an extended one without
// blanks, or a name that is neither reserved nor has wrong underscores.
bool IsIdentifier(const Word& word) noexcept;
bool IsIdentifier(std::string_view text) noexcept;

// The first of the identifiers and character literals that has stood before, null without one.
// Letter case counts in extended identifiers and character literals only.
const std::string_view* FindRepeated(const std::vector<std::string_view>& names);

}  // namespace corv::typeinfo
