#pragma once

#include <string_view>

namespace corv::stimulus {

// Returns the name of white space in a word that the reader does not treat as a blank; empty if
// there is none.
std::string_view NameOddSpace(std::string_view word) noexcept;

// Returns the signal's name and "=" at the front of a value, "clk=" in "clk=0" or "bus:8=" in
// "bus:8=0", which the program accepts before a formula and the library does not; empty if the
// value does not begin like that.
std::string_view NameBefore(std::string_view value) noexcept;

}  // namespace corv::stimulus
