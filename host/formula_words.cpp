#include "host/formula_words.h"

#include <algorithm>
#include <string>

#include "corv/util/time_units.h"
#include "host/name_symbols.h"

namespace corv::host {
namespace {

constexpr std::string_view kSeparators = " \n\t,";

std::string Lower(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), LowerCase);
    return lower;
}

// Returns the length of the word at the front. A bracket or quote at its beginning extends it to
// the match.
std::size_t WordLength(std::string_view text) {
    if (text.starts_with('"') || text.starts_with('\'')) {
        const std::size_t close = text.find(text[0], 1);
        return close == std::string_view::npos ? text.size() : close + 1;
    }
    if (!text.starts_with('(')) {
        return std::min(text.find_first_of(kSeparators), text.size());
    }
    int depth = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        depth += text[at] == '(' ? 1 : text[at] == ')' ? -1 : 0;
        if (depth == 0) {
            return at + 1;
        }
    }
    return text.size();
}

// Walks the words of a formula.
class Words {
public:
    explicit Words(std::string_view text) : text_(text) {}

    // Returns the next word, empty at the end.
    WordPlace Next() {
        at_ = std::min(text_.find_first_not_of(kSeparators, at_), text_.size());
        const WordPlace word{at_, WordLength(text_.substr(at_))};
        at_ += word.length;
        return word;
    }
    // Returns the next word of the same element, which a comma directly after the last word ends.
    WordPlace NextInElement() {
        return at_ < text_.size() && text_[at_] == ',' ? WordPlace{at_, 0} : Next();
    }
    std::string_view TextOf(WordPlace word) const {
        return text_.substr(word.position, word.length);
    }
    std::size_t At() const { return at_; }
    void GoTo(std::size_t at) { at_ = at; }

private:
    std::string_view text_;
    std::size_t at_ = 0;
};

}  // namespace

std::vector<WordPlace> ValueWords(std::string_view formula) {
    std::vector<WordPlace> values;
    const std::string lower = Lower(formula);
    for (const char* const mark : {"/custom", "\\counter", "/vesk"}) {
        if (lower.find(mark) != std::string::npos) {
            return values;
        }
    }
    Words words(formula);
    for (WordPlace word = words.Next(); word.length > 0; word = words.Next()) {
        const std::string name = Lower(words.TextOf(word));
        if (name != "-r" && name != "-repeat") {
            values.push_back(word);
        }
        if (words.NextInElement().length > 0) {
            const std::size_t behind = words.At();
            const WordPlace unit = words.NextInElement();
            if (UnitIDFromName(std::string(words.TextOf(unit)).c_str()) < 0) {
                words.GoTo(behind);
            }
        }
    }
    return values;
}

}  // namespace corv::host
