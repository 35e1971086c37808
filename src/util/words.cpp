#include "util/words.h"

#include <algorithm>
#include <cstring>

namespace corv::util {

std::size_t MatchEnd(std::string_view text, char closing) noexcept {
    if (text.empty()) {
        return std::string_view::npos;
    }
    const char opening = text[0];
    if (opening == closing) {
        return text.find(closing, 1);
    }
    std::size_t depth = 1;
    for (std::size_t i = 1; i < text.size(); ++i) {
        if (text[i] == closing && --depth == 0) {
            return i;
        }
        depth += text[i] == opening ? 1 : 0;
    }
    return std::string_view::npos;
}

std::size_t WordLength(std::string_view text, Pairs pairs, std::string_view separators) noexcept {
    const char closing = text.empty() ? '\0' : pairs.Closing(text[0]);
    if (closing == '\0') {
        return std::min(text.find_first_of(separators), text.size());
    }
    const std::size_t match = MatchEnd(text, closing);
    return match == std::string_view::npos ? text.size() : match + 1;
}

std::size_t FindOutsidePairs(std::string_view text, Pairs pairs,
                             std::string_view separators) noexcept {
    std::size_t at = 0;
    while (at < text.size() && separators.find(text[at]) == std::string_view::npos) {
        const char closing = pairs.Closing(text[at]);
        if (closing == '\0') {
            ++at;
            continue;
        }
        const std::size_t match = MatchEnd(text.substr(at), closing);
        if (match == std::string_view::npos) {
            return text.size();
        }
        at += match + 1;
    }
    return at;
}

namespace {

// Returns the text without the separators and blanks at its front, in any mixture.
std::string_view SkipAny(std::string_view text, std::string_view separators,
                         std::string_view blanks) noexcept {
    std::size_t before = 0;
    do {
        before = text.size();
        text = SkipFront(SkipFront(text, separators), blanks);
    } while (text.size() != before);
    return text;
}

}  // namespace

std::string_view TakeToken(std::string_view& text, std::string_view separators, Pairs pairs,
                           std::string_view blanks) noexcept {
    const std::size_t end = FindOutsidePairs(text, pairs, separators);
    const std::string_view token = TrimEnds(text.substr(0, end), blanks);
    text = SkipAny(text.substr(end), separators, blanks);
    return token;
}

std::string_view TakeWord(std::string_view& text, Pairs pairs,
                          std::string_view separators) noexcept {
    text = SkipFront(text, separators);
    const std::size_t length = WordLength(text, pairs, separators);
    const std::string_view word = text.substr(0, length);
    text = SkipFront(text.substr(length), separators);
    return word;
}

std::string_view StripPair(std::string_view word, Pairs pairs) noexcept {
    const char closing = word.empty() ? '\0' : pairs.Closing(word[0]);
    const bool enclosed = closing != '\0' && MatchEnd(word, closing) == word.size() - 1;
    return enclosed ? word.substr(1, word.size() - 2) : word;
}

std::string_view SkipFront(std::string_view text, std::string_view characters) noexcept {
    return text.substr(std::min(text.find_first_not_of(characters), text.size()));
}

std::string_view TrimEnds(std::string_view text, std::string_view characters) noexcept {
    text = SkipFront(text, characters);
    return text.substr(0, text.find_last_not_of(characters) + 1);
}

}  // namespace corv::util
