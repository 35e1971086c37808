#include "typeinfo/wording.h"

#include <algorithm>
#include <array>

#include "platform/ascii.h"

namespace corv::typeinfo {
namespace {

constexpr std::size_t kLongestWord = 31;  // longer words are not compared
constexpr std::size_t kFar = 99;

// Returns how many letters have to be changed, inserted, removed or swapped with their neighbour.
std::size_t Distance(std::string_view a, std::string_view b) noexcept {
    if (a.size() > kLongestWord || b.size() > kLongestWord) {
        return kFar;
    }
    using Row = std::array<std::size_t, kLongestWord + 1>;
    Row before_last{};
    Row last{};
    Row row{};
    for (std::size_t j = 0; j <= b.size(); ++j) {
        row[j] = j;
    }
    for (std::size_t i = 1; i <= a.size(); ++i) {
        before_last = last;
        last = row;
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const bool same = platform::Lower(a[i - 1]) == b[j - 1];
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (same ? 0 : 1)});
            if (i > 1 && j > 1 && platform::Lower(a[i - 1]) == b[j - 2] &&
                platform::Lower(a[i - 2]) == b[j - 1]) {
                row[j] = std::min(row[j], before_last[j - 2] + 1);
            }
        }
    }
    return row[b.size()];
}

}  // namespace

std::string Quote(std::string_view word) {
    constexpr std::size_t kMaxQuoted = 40;
    std::string out = "`";
    std::size_t length = std::min(word.size(), kMaxQuoted);
    while (length < word.size() && length > kMaxQuoted - 3 &&
           (static_cast<unsigned char>(word[length]) & 0xC0) == 0x80) {
        --length;  // keeps UTF-8 characters whole
    }
    out += word.substr(0, length);
    std::replace_if(
        out.begin(), out.end(),
        [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7F'; }, ' ');
    out += length < word.size() ? "...`" : "`";
    return out;
}

std::string DidYouMean(std::string_view suggestion, std::string_view otherwise) {
    return suggestion.empty() ? std::string(otherwise)
                              : "; did you mean " + Quote(suggestion) + "?";
}

void NearestWord::Offer(std::string_view candidate) noexcept {
    constexpr std::size_t kBeginning = 3;  // as far as the farthest misspelt word
    const bool begins =
        word_.size() >= 3 && platform::EqualNoCase(candidate.substr(0, word_.size()), word_);
    const std::size_t most = word_.size() < 3    ? 0
                             : word_.size() < 6  ? 1
                             : word_.size() < 10 ? 2
                                                 : 3;
    const std::size_t apart = Distance(word_, candidate);
    const std::size_t distance = apart <= most ? apart : begins ? kBeginning : kFar;
    if (distance < distance_) {
        distance_ = distance;
        found_ = candidate;
    }
}

}  // namespace corv::typeinfo
