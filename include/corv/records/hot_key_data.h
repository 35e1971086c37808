#pragma once

#include "corv/platform/cstring.h"
#include "corv/platform/export.h"

// The data of a hot-key stimulator as text: the key's number, "/", a text, such as "65/abc". The
// number is written as a signed one of 32 bits; runs of "/" count as one.

// Reads a hot key into `*key`, whose pointer may be null, and `result`. Only the part of the text
// before its next "/" is read. Returns false, with the result empty, for null, if the number or the
// text after it is missing, and if out of memory; the key is set even then, provided there is a
// number.
CORV_API bool ParseHotKeyData(const char* text, unsigned long* key, CString& result) noexcept;

// Writes a hot key; null counts as an empty text. The result is empty if out of memory.
CORV_API void MergeHotKeyData(unsigned long key, const char* text, CString& result) noexcept;
