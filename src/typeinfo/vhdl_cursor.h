#pragma once

#include <string>
#include <string_view>

#include "corv/typeinfo/vhdl_type.h"
#include "typeinfo/vhdl_words.h"

namespace corv::typeinfo {

// Returns the text from the beginning of one part of a text to the end of another.
inline std::string_view Span(std::string_view first, std::string_view last) noexcept {
    return {first.data(), static_cast<std::size_t>(last.data() + last.size() - first.data())};
}

// Reads a VHDL text word by word and records the first problem with it. Operations that fail return
// false.
class VhdlCursor {
public:
    VhdlCursor(std::string_view text, TypeProblem& problem)
        : text_(text), words_(text), problem_(problem) {}

    std::string_view Text() const noexcept { return text_; }
    const Word& Next() const noexcept { return words_.Next(); }
    std::string_view Take() noexcept { return words_.Take().text; }
    // Takes a keyword or symbol if it comes next.
    bool Skip(std::string_view word) noexcept;
    // Takes one that must come next; `where` completes the sentence "expected `)`...".
    bool Expect(std::string_view word, std::string_view where);

    bool Fail(std::string_view place, std::string sentence);
    // Records that the next word is not what was expected; it may be the hint, misspelt.
    bool FailAtNext(std::string_view expected, std::string_view hint = {});

private:
    std::string_view text_;
    VhdlWords words_;
    TypeProblem& problem_;
};

}  // namespace corv::typeinfo
