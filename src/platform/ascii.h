#pragma once

#include <algorithm>
#include <string_view>

// Letters, digits and blanks of the 7-bit alphabet, independent of the locale.
namespace corv::platform {

constexpr char Lower(char c) noexcept {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}
constexpr char Upper(char c) noexcept {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - ('a' - 'A')) : c;
}
constexpr bool IsDigit(char c) noexcept {
    return c >= '0' && c <= '9';
}
constexpr bool IsLetter(char c) noexcept {
    return Lower(c) >= 'a' && Lower(c) <= 'z';
}
// The same characters as isspace in the C locale.
constexpr bool IsSpace(char c) noexcept {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

constexpr bool EqualNoCase(std::string_view a, std::string_view b) noexcept {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(),
                                              [](char x, char y) { return Lower(x) == Lower(y); });
}

// Returns the first position of a word in a text of any case, npos if absent. The word must be in
// lower case and begin with a character that has no case, which std::string_view::find can look
// for.
constexpr std::size_t FindNoCase(std::string_view text, std::string_view word) noexcept {
    for (std::size_t at = text.find(word[0]); at != std::string_view::npos;
         at = text.find(word[0], at + 1)) {
        if (EqualNoCase(text.substr(at, word.size()), word)) {
            return at;
        }
    }
    return std::string_view::npos;
}

}  // namespace corv::platform
