#pragma once

#include <string_view>

// Words at the front of a text, as views. Nothing here copies the text, so splitting a long formula
// takes linear time.
namespace corv::util {

// Opening characters and, at the same places, the closing ones.
struct Pairs {
    std::string_view opening;
    std::string_view closing;

    // Returns the character that closes `c`, 0 if `c` is not an opening character.
    char Closing(char c) const noexcept {
        const std::size_t at = opening.find(c);
        return at < closing.size() ? closing[at] : '\0';
    }
};

// Returns the position of the character that closes the pair opened at the front of the text, npos
// if there is none. A closing character takes precedence over an opening one, so quotes never nest.
std::size_t MatchEnd(std::string_view text, char closing) noexcept;

// Returns how much of the text belongs to its first word: up to and including the match of an
// opening character at the front (the whole text if there is no match), otherwise up to the first
// separator.
std::size_t WordLength(std::string_view text, Pairs pairs, std::string_view separators) noexcept;

// Returns the position of the first separator outside pairs, the text's length if there is none.
std::size_t FindOutsidePairs(std::string_view text, Pairs pairs,
                             std::string_view separators) noexcept;

// Take parts from the front of a text, with the separators after them. They do what
// corv/util/text.h says of NextToken and _GetBracedWord, on views.
std::string_view TakeToken(std::string_view& text, std::string_view separators, Pairs pairs,
                           std::string_view blanks) noexcept;
std::string_view TakeWord(std::string_view& text, Pairs pairs,
                          std::string_view separators) noexcept;
// Returns the word without the pair that encloses all of it.
std::string_view StripPair(std::string_view word, Pairs pairs) noexcept;

// Return the text without the characters at its front, or at both ends.
std::string_view SkipFront(std::string_view text, std::string_view characters) noexcept;
std::string_view TrimEnds(std::string_view text, std::string_view characters) noexcept;

}  // namespace corv::util
