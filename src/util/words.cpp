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

std::string_view SkipFront(std::string_view text, std::string_view characters) noexcept {
    return text.substr(std::min(text.find_first_not_of(characters), text.size()));
}

std::string_view TrimEnds(std::string_view text, std::string_view characters) noexcept {
    text = SkipFront(text, characters);
    return text.substr(0, text.find_last_not_of(characters) + 1);
}

}  // namespace corv::util
