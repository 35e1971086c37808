#pragma once

#include "corv/platform/cstring.h"
#include "corv/platform/export.h"

// The data of a hot-key stimulator as text: the key's number, "/", a text, such as "65/abc". The
// number is written as a signed one of 32 bits; runs of "/" count as one.

// Reads a hot key. False, with the result empty, for null, without a number or a text behind it and
// when memory runs out; the key, whose pointer may be null, is set even so if there is a number. Of
// a text with a "/" in it the part in front of that is read.
CORV_API bool ParseHotKeyData(const char* text, unsigned long* key, CString& result) noexcept;

// Writes a hot key; null counts as empty text. The result is empty when memory runs out.
CORV_API void MergeHotKeyData(unsigned long key, const char* text, CString& result) noexcept;
