#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace corv::find {

// Why a condition can't be used: a place in its text and a sentence.
class Refusal : public std::runtime_error {
public:
    Refusal(std::size_t place, std::size_t size, const std::string& sentence)
        : std::runtime_error(sentence), position(place), length(size) {}

    std::size_t position;
    std::size_t length;
};

// A word of a condition.
struct Word {
    enum class Kind {
        Name,     // a signal, a literal of an enumeration or a word of the language
        Literal,  // 31, -3, 1.5, 0x1F, 16#1F#, '1', "0101", x"1F", 20ns
        Sign,     // ( ) = /= < <= > >= ?=
        End,
    };

    Kind kind = Kind::End;
    std::size_t position = 0;
    std::string_view text;  // as written

    // Whether it is a word of the language or a sign, in any case.
    bool Is(std::string_view wanted) const;
};

// Cuts a condition into words, the last of kind `End`. Names take their indices along: `a(3)`,
// `tb/u1.d[7:4]`. The text must outlive the words. Throws Refusal.
std::vector<Word> ReadWords(std::string_view text);

}  // namespace corv::find
