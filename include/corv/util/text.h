#pragma once

#include "corv/platform/cstring.h"
#include "corv/platform/export.h"

// Words and tokens taken from the front of a text. To consume a part means to remove it and the
// separators after it from the source.
//
// Character sets are zero-terminated texts. The closing character for an opening one is at the same
// position of its set. Inside a pair, a repeat of the opening character opens a nested pair unless
// both characters are the same (quotes); an opening character without its match reaches to the end
// of the text. If out of memory, the result is empty and the source unchanged.

// Consumes and returns the text up to the first separator outside brackets and quotes, or the whole
// rest, without blanks at its ends: "(a,b) 1, c 2" returns "(a,b) 1" and leaves "c 2".
CORV_API CString NextToken(CString& source, const char* separators, const char* opening,
                           const char* closing, const char* blanks) noexcept;

// Skips blanks, then consumes and returns one word: from an opening character to its match, or up
// to the next blank. The result is empty if nothing is left.
CORV_API CString NextWord(CString& source, const char* opening, const char* closing,
                          const char* blanks) noexcept;

// Returns the first word of the source without one enclosing pair: "(a b)" returns "a b". With an
// empty separator set the whole source is the word. The source does not change.
CORV_API CString GetBracedWord(CString& source, const char* separators, const char* opening,
                               const char* closing) noexcept;

// Consumes and returns the next word between separators. A bracketed or quoted group is one word
// and keeps its pair: "(a,b),c" returns "(a,b)" and leaves "c".
CORV_API CString _GetBracedWord(CString& source, const char* separators, const char* opening,
                                const char* closing) noexcept;

// Removes the characters from both ends. If out of memory, the text is unchanged.
CORV_API void Trim(CString& text, const char* characters) noexcept;

// In a text whose first character is the opening one, returns the position of the matching closing
// character, skipping nested pairs; null if there is none or the text is null or empty.
CORV_API char* FindMatching(char closing, char* text) noexcept;
