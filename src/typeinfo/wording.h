#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// Words of a text within the sentences that say what is wrong with it.
namespace corv::typeinfo {

// Returns a word in backticks, printable and not too long.
std::string Quote(std::string_view word);

// Returns "; did you mean `x`?", or `otherwise` if there is no suggestion.
std::string DidYouMean(std::string_view suggestion, std::string_view otherwise);

// Picks, from the words offered in lower case, the first of those nearest to a misspelt one: those
// with few letters changed, missing, added or swapped for the word's length, or else one that
// begins with the word.
class NearestWord {
public:
    explicit NearestWord(std::string_view word) noexcept : word_(word) {}

    void Offer(std::string_view candidate) noexcept;
    // Empty if none is near.
    std::string_view Found() const noexcept { return found_; }

private:
    std::string_view word_;
    std::string_view found_;
    std::size_t distance_ = 4;
};

}  // namespace corv::typeinfo
