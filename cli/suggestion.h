#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace corv::cli {

// The end of a sentence about an unknown word: "; did you mean `draw`?" when one of the known
// words is near, else empty.
std::string Suggestion(std::string_view word, const std::vector<std::string>& known);

// The index of the known word that is nearest; their number when none is near.
std::size_t NearestWord(std::string_view word, const std::vector<std::string>& known);

// "draw, events or clock".
std::string Alternatives(const std::vector<std::string>& words);

}  // namespace corv::cli
