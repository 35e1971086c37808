#pragma once

#include <string_view>

// Words at the front of a text, as views: nothing here copies the text or consumes it by moving it.
namespace corv::util {

// Opening characters and, at the same places, the closing ones.
struct Pairs {
    std::string_view opening;
    std::string_view closing;

    // The character that closes `c`, 0 when `c` opens nothing.
    char Closing(char c) const noexcept {
        const std::size_t at = opening.find(c);
        return at < closing.size() ? closing[at] : '\0';
    }
};

// The position of the character that closes the pair opened at the front of the text, npos when
// there is none. A closing character is looked for before an opening one, so quotes never nest.
std::size_t MatchEnd(std::string_view text, char closing) noexcept;

// How much of the text belongs to its first word: through the match of an opening character at the
// front (without a match: the whole text), else up to the first separator.
std::size_t WordLength(std::string_view text, Pairs pairs, std::string_view separators) noexcept;

// The position of the first separator outside pairs, the text's length when there is none.
std::size_t FindOutsidePairs(std::string_view text, Pairs pairs,
                             std::string_view separators) noexcept;

// Parts taken off the front of a text, with the separators behind them; what text.h tells of the
// functions of these names.
std::string_view TakeToken(std::string_view& text, std::string_view separators, Pairs pairs,
                           std::string_view blanks) noexcept;
std::string_view TakeWord(std::string_view& text, Pairs pairs,
                          std::string_view separators) noexcept;
// The word without the one pair that encloses all of it.
std::string_view StripPair(std::string_view word, Pairs pairs) noexcept;

// The text without the characters at its front; at both ends.
std::string_view SkipFront(std::string_view text, std::string_view characters) noexcept;
std::string_view TrimEnds(std::string_view text, std::string_view characters) noexcept;

}  // namespace corv::util
