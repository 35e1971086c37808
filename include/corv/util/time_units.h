#pragma once

#include "corv/platform/export.h"

// Time units and times as text. Unit identifiers number the units of the predefined type TIME
// (IEEE 1076): 0 fs, 1 ps, 2 ns, 3 us, 4 ms, 5 sec, 6 min, 7 hr. Identifier 1, the picosecond, is
// the base unit: every whole-number time of the library counts picoseconds.

// The value, given in one unit, in another. Equal units give the value unchanged; an unknown unit
// gives 0.
CORV_API double ChangeTime(double value, unsigned from_unit, unsigned to_unit) noexcept;

// Reads a number with an optional sign and fraction and an optional unit name right behind it.
// Writes the number and the unit's identifier, -1 when no unit is written. With a unit, a number
// with a fraction moves down to the first unit in which it is whole: "1.5ns" gives 1500 and 1.
// False, with value and unit untouched, for anything else: empty text, no digits, an exponent,
// text after the unit, a number beyond 9.2e18 base units. Null outs are not written.
CORV_API bool TextToTime(const char* text, double* value, int* unit) noexcept;

// The unit's name in lower case, "" for an unknown identifier. The text is static.
CORV_API const char* UnitNameFromID(unsigned unit) noexcept;

// The identifier of a unit name in upper or lower case, -1 for anything else.
CORV_API int UnitIDFromName(const char* name) noexcept;

// Moves a whole value to the largest unit in which it is still whole ("10000 ps" becomes 10 ns).
// 0, a value with a fraction and an unknown unit stay as they are.
CORV_API void ScaleNumberNoFloat(double* value, int* unit) noexcept;

// Moves a value to a larger unit for display: a whole value as ScaleNumberNoFloat does, one with a
// fraction while it is at least as large as the next unit.
CORV_API void ScaleNumber(double* value, int* unit) noexcept;

// The period of a frequency, in the time unit. Frequency units: 0 Hz, 1 kHz, 2 MHz, 3 GHz, 4 THz.
// A frequency that is not above 0 and an unknown unit give 0.
CORV_API double PeriodFromFreq(double frequency, unsigned frequency_unit,
                               unsigned time_unit) noexcept;
