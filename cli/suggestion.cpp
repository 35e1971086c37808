#include "cli/suggestion.h"

#include <algorithm>

namespace corv::cli {
namespace {

// Returns how many letters must be changed, added, dropped or swapped with their neighbour to turn
// one word into the other.
std::size_t Distance(std::string_view a, std::string_view b) {
    std::vector<std::vector<std::size_t>> cost(a.size() + 1,
                                               std::vector<std::size_t>(b.size() + 1));
    for (std::size_t i = 0; i <= a.size(); ++i) {
        for (std::size_t j = 0; j <= b.size(); ++j) {
            if (i == 0 || j == 0) {
                cost[i][j] = i + j;
                continue;
            }
            const std::size_t change = a[i - 1] == b[j - 1] ? 0 : 1;
            cost[i][j] =
                std::min({cost[i - 1][j - 1] + change, cost[i - 1][j] + 1, cost[i][j - 1] + 1});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
                cost[i][j] = std::min(cost[i][j], cost[i - 2][j - 2] + 1);
            }
        }
    }
    return cost[a.size()][b.size()];
}

std::string Joined(std::span<const std::string_view> words, std::string_view last) {
    std::string list;
    for (std::size_t i = 0; i < words.size(); ++i) {
        list.append(i == 0 ? "" : i + 1 == words.size() ? last : ", ").append(words[i]);
    }
    return list;
}

}  // namespace

std::size_t NearestWord(std::string_view word, const std::vector<std::string>& known) {
    constexpr std::size_t kLongest = 80;
    std::size_t nearest = known.size();
    std::size_t least =
        word.size() <= kLongest ? 1 + std::clamp<std::size_t>(word.size() / 3, 1, 5) : 0;
    for (std::size_t i = 0; i < known.size(); ++i) {
        const std::string& candidate = known[i];
        const std::size_t between =
            std::max(candidate.size(), word.size()) - std::min(candidate.size(), word.size());
        if (between > least || candidate.empty()) {
            continue;
        }
        const std::size_t distance = Distance(word, candidate);
        const bool same_start = distance == least && nearest < known.size() &&
                                known[nearest].front() != word.front() &&
                                candidate.front() == word.front();
        if ((distance < least || same_start) && distance < candidate.size()) {
            least = distance;
            nearest = i;
        }
    }
    return nearest;
}

std::string Suggestion(std::string_view word, const std::vector<std::string>& known) {
    const std::size_t nearest = NearestWord(word, known);
    return nearest == known.size() ? "" : "; did you mean `" + known[nearest] + "`?";
}

std::string Alternatives(const std::vector<std::string>& words) {
    return Joined(std::vector<std::string_view>(words.begin(), words.end()), " or ");
}

std::string Listed(std::span<const std::string_view> words) {
    return Joined(words, " and ");
}

}  // namespace corv::cli
