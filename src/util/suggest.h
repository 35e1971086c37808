#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// What a misspelt word was most likely meant to be.
namespace corv::util {

// Returns how many letters must be changed, added, removed or swapped with their neighbour to turn
// a word into another, which is in lower case; upper and lower case of the first word are the same.
// Words of more than 31 letters are not compared and are very far apart.
std::size_t EditDistance(std::string_view word, std::string_view lower) noexcept;

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

}  // namespace corv::util
