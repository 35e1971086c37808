#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// Text of any bytes made fit for a picture. A character takes one place.
namespace corv::host {

// The characters of a UTF-8 text. A byte that is no part of one, a control character and what turns
// the direction of writing or ends a line become U+FFFD, so that no text can move a terminal's
// cursor, show its characters in another order or break a document.
std::vector<std::string> Characters(std::string_view text);

// The text in UTF-8, of one that is either UTF-8 or ISO 8859-1: bytes that make no character of the
// one are characters of the other.
std::string FromLatin1(std::string_view text);

// The same of a text of VHDL, a value or a type. In an extended identifier the no-break space
// stands for a blank, which descriptions of types can't have there.
std::string FromVhdl(std::string_view text);

// The text rebuilt from its characters.
std::string CleanText(std::string_view text);

std::size_t TextWidth(std::string_view text);

// A clean text in at most `width` places: whole, or its head and tail around the ellipsis
// ("16#D…F") when there is room for one character on either side, else empty. A part of the text
// never stands for the whole.
std::string FitText(std::string_view text, std::size_t width, std::string_view ellipsis);

// The text of a value in at most `width` places, so that what is left of it reads as no other
// value: a number is whole or left out, of the digits of a vector three stay on either side or
// none, (a,b,c) keeps whole elements in front of the ellipsis, and a word is cut as above.
std::string FitValue(std::string_view text, std::size_t width, std::string_view ellipsis);

}  // namespace corv::host
