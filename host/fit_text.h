#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// Makes text of any bytes fit for a picture. A character takes one place.
namespace corv::host {

// Returns the characters of a UTF-8 text. Bytes that are not part of a character, control
// characters, and characters that change the direction of writing or end a line become U+FFFD, so
// that no text can move a terminal's cursor, reorder what is shown or break a document.
std::vector<std::string> Characters(std::string_view text);

// Returns a text in UTF-8 that is either UTF-8 or ISO 8859-1: bytes that are not valid in the
// former are characters of the latter. VHDL sources use both.
std::string FromLatin1(std::string_view text);

// The same for a text of VHDL, a value or a type. In an extended identifier, a no-break space is
// shown as the blank that it replaces, which type descriptions cannot have there.
std::string FromVhdl(std::string_view text);

// Returns the text rebuilt from its characters.
std::string CleanText(std::string_view text);

std::size_t TextWidth(std::string_view text);

// Returns a clean text in at most `width` places: whole, or its head and tail around the ellipsis
// ("16#D…F") if there is room for one character on either side, else empty. A part of the text
// never looks like the whole.
std::string FitText(std::string_view text, std::size_t width, std::string_view ellipsis);

// Returns the text of a value in at most `width` places, such that the rest never reads as another
// value: a number is whole or omitted, of the digits of a vector at least three remain on either
// side or none, (a,b,c) keeps whole elements before the ellipsis, and a word is cut as above.
std::string FitValue(std::string_view text, std::size_t width, std::string_view ellipsis);

}  // namespace corv::host
