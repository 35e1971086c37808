#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace corv::host {

// Where a word is in a formula.
struct WordPlace {
    std::size_t position;
    std::size_t length;
};

// Returns the values of a list of values and times, in order, without the repeat period; none for a
// counter, a custom formula or the compact notation.
std::vector<WordPlace> ValueWords(std::string_view formula);

}  // namespace corv::host
