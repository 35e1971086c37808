#pragma once

#include <string>
#include <string_view>

namespace corv::util {

// Returns a user's word for use within a sentence: in backticks, with blanks for control
// characters, cut after 40 bytes at the border of a UTF-8 character.
std::string Quote(std::string_view word);

}  // namespace corv::util
