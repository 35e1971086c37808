#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace corv::cli {

// Returns the end of a sentence about an unknown word: "; did you mean `draw`?" if one of the known
// words is near, else an empty text.
std::string Suggestion(std::string_view word, const std::vector<std::string>& known);

// Returns the index of the nearest known word, or the number of known words if none is near.
std::size_t NearestWord(std::string_view word, const std::vector<std::string>& known);

// Returns the words as "draw, events or clock".
std::string Alternatives(const std::vector<std::string>& words);

// "Hz, kHz and MHz".
std::string Listed(std::span<const std::string_view> words);

}  // namespace corv::cli
