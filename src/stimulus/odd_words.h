#pragma once

#include <string_view>

namespace corv::stimulus {

// The name of white space in a word, which the reader takes for no blank; empty without any.
std::string_view NameOddSpace(std::string_view word) noexcept;

// The signal's name and "=" at the front of a value, "clk=" of "clk=0" or "bus:8=" of "bus:8=0", as
// the program takes them before a formula; empty when the value does not begin so.
std::string_view NameBefore(std::string_view value) noexcept;

}  // namespace corv::stimulus
