#include "util/suggest.h"

#include <algorithm>
#include <array>

#include "platform/ascii.h"
#include "util/quote.h"

namespace corv::util {
namespace {

constexpr std::size_t kLongestWord = 31;  // longer words are not compared
constexpr std::size_t kFar = 99;

}  // namespace

std::size_t EditDistance(std::string_view word, std::string_view lower) noexcept {
    if (word.size() > kLongestWord || lower.size() > kLongestWord) {
        return kFar;
    }
    using Row = std::array<std::size_t, kLongestWord + 1>;
    Row before_last{};
    Row last{};
    Row row{};
    for (std::size_t j = 0; j <= lower.size(); ++j) {
        row[j] = j;
    }
    for (std::size_t i = 1; i <= word.size(); ++i) {
        before_last = last;
        last = row;
        row[0] = i;
        for (std::size_t j = 1; j <= lower.size(); ++j) {
            const bool same = platform::Lower(word[i - 1]) == lower[j - 1];
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (same ? 0 : 1)});
            if (i > 1 && j > 1 && platform::Lower(word[i - 1]) == lower[j - 2] &&
                platform::Lower(word[i - 2]) == lower[j - 1]) {
                row[j] = std::min(row[j], before_last[j - 2] + 1);
            }
        }
    }
    return row[lower.size()];
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
    const std::size_t apart = EditDistance(word_, candidate);
    const std::size_t distance = apart <= most ? apart : begins ? kBeginning : kFar;
    if (distance < distance_) {
        distance_ = distance;
        found_ = candidate;
    }
}

}  // namespace corv::util
