#pragma once

#include "corv/platform/export.h"

// Time units and times as text. Unit identifiers number the units of the predefined type TIME (IEEE
// 1076): 0 fs, 1 ps, 2 ns, 3 us, 4 ms, 5 sec, 6 min, 7 hr. Identifier 1, the picosecond, is the
// base unit: every whole-number time of the library is in picoseconds.

// Converts a value from one unit to another. Equal units return the value unchanged; an unknown
// unit returns 0.
CORV_API double ChangeTime(double value, unsigned from_unit, unsigned to_unit) noexcept;

// Reads a number with an optional sign and fraction and an optional unit name directly after it.
// Stores the number and the unit's identifier, -1 if there is no unit. A number with a fraction and
// a unit moves down to the first unit in which it is whole: "1.5ns" becomes 1500 and 1. Returns
// false, with value and unit unchanged, for anything else: an empty text, no digits, an exponent,
// text after the unit, a number beyond 9.2e18 base units. Null pointers are not written to.
CORV_API bool TextToTime(const char* text, double* value, int* unit) noexcept;

// Returns the unit's name in lower case, "" for an unknown identifier. The text is static.
CORV_API const char* UnitNameFromID(unsigned unit) noexcept;

// Returns the identifier of a unit name in any case, -1 for anything else.
CORV_API int UnitIDFromName(const char* name) noexcept;

// Converts a whole value to the largest unit in which it is still whole (10000 ps becomes 10 ns).
// 0, a value with a fraction, and an unknown unit stay as they are.
CORV_API void ScaleNumberNoFloat(double* value, int* unit) noexcept;

// Converts a value to a larger unit for display: a whole value as ScaleNumberNoFloat does, a value
// with a fraction to the largest unit in which it is at least 1.
CORV_API void ScaleNumber(double* value, int* unit) noexcept;

// Returns the period of a frequency, in the time unit. Frequency units are 0 Hz, 1 kHz, 2 MHz, 3
// GHz and 4 THz. Returns 0 for a frequency that is not above 0 and for an unknown unit.
CORV_API double PeriodFromFreq(double frequency, unsigned frequency_unit,
                               unsigned time_unit) noexcept;
