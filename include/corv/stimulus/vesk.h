#pragma once

#include "corv/platform/export.h"

// The compact notation of gate-level waveforms, written behind "/vesk" in a formula: values that
// are each followed at once by how long they last, groups with a repeat count, and "/CLK" to make
// the whole pattern repeat. "(010NS110NS)3/CLK" is 0 for 10 ns and 1 for 10 ns, three times over,
// then again from the start. Values are one character or hexadecimal digits in brackets
// ("[1F]25NS"); a duration without a unit counts nanoseconds.

// Whether every group of a notation text (without "/vesk") repeats at most `maximum` times,
// compared unsigned. The whole text counts as one group of 1. True for a text that can't be read,
// such as one that nests more than 256 groups.
CORV_API bool CheckVeskMaxRepeatCount(const char* text, int maximum) noexcept;
