#pragma once

#include "corv/platform/export.h"

// The compact notation of gate-level waveforms, written after "/vesk" in a formula: values, each
// followed directly by its duration, groups with a repeat count, and "/CLK" to repeat the whole
// pattern. "(010NS110NS)3/CLK" is 0 for 10 ns and 1 for 10 ns, three times over, then again from
// the start. Values are one character or hexadecimal digits in brackets ("[1F]25NS"); a duration
// without a unit is in nanoseconds.

// Returns whether every group of a notation text (without "/vesk") repeats at most `maximum` times,
// compared as unsigned numbers. The whole text counts as a group repeated once. Returns true for a
// text that cannot be read, such as one that nests more than 256 groups.
CORV_API bool CheckVeskMaxRepeatCount(const char* text, int maximum) noexcept;
