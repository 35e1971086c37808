#include "corv/util/text.h"

#include <string_view>

#include "platform/guard.h"
#include "util/words.h"

namespace {

using corv::util::Pairs;

std::string_view View(const char* text) noexcept {
    return text ? text : "";
}

// Copies the part out and makes `rest`, a view of the source, the new source. Both copies are made
// before the source changes, so that it is unchanged if out of memory.
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
    std::string_view rest = source.View();
    const std::string_view token =
        corv::util::TakeToken(rest, View(separators), {View(opening), View(closing)}, View(blanks));
    return Consume(source, token, rest);
}

CString NextWord(CString& source, const char* opening, const char* closing,
                 const char* blanks) noexcept {
    return _GetBracedWord(source, blanks, opening, closing);
}

CString GetBracedWord(CString& source, const char* separators, const char* opening,
                      const char* closing) noexcept {
    const Pairs pairs{View(opening), View(closing)};
    std::string_view text = source.View();
    const std::string_view word =
        View(separators).empty() ? text : corv::util::TakeWord(text, pairs, View(separators));
    return corv::platform::Guarded(CString(),
                                   [&] { return CString(corv::util::StripPair(word, pairs)); });
}

CString _GetBracedWord(CString& source, const char* separators, const char* opening,
                       const char* closing) noexcept {
    std::string_view rest = source.View();
    const std::string_view word =
        corv::util::TakeWord(rest, {View(opening), View(closing)}, View(separators));
    return Consume(source, word, rest);
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
