#pragma once

#include <cstdint>

#include "corv/platform/cstring.h"
#include "corv/platform/export.h"
#include "corv/stimulus/time_unit.h"

// One element of a stimulus: a value that the signal takes at a time.
class CORV_API CSimpleStimulus {
public:
    // An empty value at time 0, relative, written with its time.
    CSimpleStimulus() noexcept;
    CSimpleStimulus(const CSimpleStimulus&) = default;
    CSimpleStimulus& operator=(const CSimpleStimulus&) = default;
    virtual ~CSimpleStimulus();

    // Stores value text, time and whether the time is absolute (non-zero). Returns
    //
    //   1  on success;
    //   0  for an empty or null value, and for a time that converts to a negative number; the
    //      fields are stored all the same;
    //   0  with nothing stored, if out of memory.
    int Create(const char* value, const TTimeUnit<std::int64_t>& time, int absolute) noexcept;

    // Copies the value text out; if out of memory, the target is unchanged.
    void GetValue(CString& value) const noexcept;

    // The time in its target unit (picoseconds for the elements of a stimulus).
    std::int64_t GetTime() const noexcept { return time_.GetTime(); }

    // Returns 1 if the time is a simulation time, 0 if it counts from the start of the pattern.
    int Absolute() const noexcept { return absolute_; }

    // Sets whether the element is written with its time.
    void IncludeTime(bool include) noexcept { include_time_ = include; }

    // Writes the element as formula text: the value, a space, "@" when absolute, the number as
    // stored and, unless it is the target unit, the unit's name: "1 @10ns". Without its time, only
    // the value is written. The text is empty if out of memory.
    void GenerateFormula(CString& out) const noexcept;

protected:
    friend class CStimulus;

    CString value_;
    TTimeUnit<std::int64_t> time_;
    int absolute_ = 0;
    bool include_time_ = true;
};
