#pragma once

#include "corv/platform/cstring.h"
#include "corv/platform/export.h"

// Words and tokens taken off the front of a text. To consume a part means to remove it and the
// separators after it from the source.
//
// Character sets are zero-terminated texts. The closing character that belongs to an opening one
// stands at the same position of its set. Inside a pair, a repeat of the opening character opens a
// nested pair unless both characters are the same (quotes); an opening character without its match
// reaches to the end of the text. When memory runs out the result is empty and the source as it
// was.

// Consumes and gives the text up to the first separator outside brackets and quotes, or the whole
// rest, without blanks at its ends: "(a,b) 1, c 2" gives "(a,b) 1" and leaves "c 2".
CORV_API CString NextToken(CString& source, const char* separators, const char* opening,
                           const char* closing, const char* blanks) noexcept;

// Skips blanks, then consumes and gives one word: from an opening character to its match, or up to
// the next blank. Empty when nothing is left.
CORV_API CString NextWord(CString& source, const char* opening, const char* closing,
                          const char* blanks) noexcept;

// The first word of the source without one enclosing pair: "(a b)" gives "a b". With an empty
// separator set the whole source is the word. The source stays.
CORV_API CString GetBracedWord(CString& source, const char* separators, const char* opening,
                               const char* closing) noexcept;

// Consumes and gives the next word between separators; a bracketed or quoted group is one word and
// keeps its pair: "(a,b),c" gives "(a,b)" and leaves "c".
CORV_API CString _GetBracedWord(CString& source, const char* separators, const char* opening,
                                const char* closing) noexcept;

// Removes the characters from both ends; when memory runs out the text stays as it was.
CORV_API void Trim(CString& text, const char* characters) noexcept;

// In a text whose first character is the opening one: the position of the matching closing
// character, nested pairs skipped; null when there is none or the text is null or empty.
CORV_API char* FindMatching(char closing, char* text) noexcept;
