#include "corv/util/text.h"

#include <string_view>

#include "platform/guard.h"
#include "util/words.h"

namespace {

using corv::util::Pairs;

std::string_view View(const char* text) noexcept {
    return text ? text : "";
}

// The text without the separators and blanks at its front, in any mixture.
std::string_view SkipAny(std::string_view text, std::string_view separators,
                         std::string_view blanks) noexcept {
    std::size_t before = 0;
    do {
        before = text.size();
        text = corv::util::SkipFront(corv::util::SkipFront(text, separators), blanks);
    } while (text.size() != before);
    return text;
}

// Copies the part out and makes `rest`, a view of the source, the source.
CString Consume(CString& source, std::string_view part, std::string_view rest) noexcept {
    return corv::platform::Guarded(CString(), [&] {
        CString taken(part);
        source = CString(rest);
        return taken;
    });
}

}  // namespace

CString NextToken(CString& source, const char* separators, const char* opening, const char* closing,
                  const char* blanks) noexcept {
    const std::string_view text = source.View();
    const std::size_t end =
        corv::util::FindOutsidePairs(text, {View(opening), View(closing)}, View(separators));
    return Consume(source, corv::util::TrimEnds(text.substr(0, end), View(blanks)),
                   SkipAny(text.substr(end), View(separators), View(blanks)));
}

CString NextWord(CString& source, const char* opening, const char* closing,
                 const char* blanks) noexcept {
    const std::string_view text = corv::util::SkipFront(source.View(), View(blanks));
    const std::size_t length =
        corv::util::WordLength(text, {View(opening), View(closing)}, View(blanks));
    const std::string_view rest = corv::util::SkipFront(text.substr(length), View(blanks));
    return Consume(source, text.substr(0, length), rest);
}

CString GetBracedWord(CString& source, const char* separators, const char* opening,
                      const char* closing) noexcept {
    const Pairs pairs{View(opening), View(closing)};
    std::string_view word = source.View();
    if (!View(separators).empty()) {
        word = corv::util::SkipFront(word, View(separators));
        word = word.substr(0, corv::util::WordLength(word, pairs, View(separators)));
    }
    const char closer = word.empty() ? '\0' : pairs.Closing(word[0]);
    if (closer != '\0' && corv::util::MatchEnd(word, closer) == word.size() - 1) {
        word = word.substr(1, word.size() - 2);
    }
    return corv::platform::Guarded(CString(), [&] { return CString(word); });
}

CString _GetBracedWord(CString& source, const char* separators, const char* opening,
                       const char* closing) noexcept {
    const std::string_view text = corv::util::SkipFront(source.View(), View(separators));
    const std::size_t length =
        corv::util::WordLength(text, {View(opening), View(closing)}, View(separators));
    const std::string_view rest = corv::util::SkipFront(text.substr(length), View(separators));
    return Consume(source, text.substr(0, length), rest);
}

void Trim(CString& text, const char* characters) noexcept {
    const std::string_view kept = corv::util::TrimEnds(text.View(), View(characters));
    if (kept.size() < text.View().size()) {
        corv::platform::Done([&] { text = CString(kept); });
    }
}

char* FindMatching(char closing, char* text) noexcept {
    const std::size_t match = corv::util::MatchEnd(View(text), closing);
    return match == std::string_view::npos ? nullptr : text + match;
}
