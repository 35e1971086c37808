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

    // Stores value text, time and whether the time is absolute (non-zero). Gives 0 for an empty or
    // null value and for a time that converts to a negative number, the fields stored all the
    // same; 0 with nothing stored when memory runs out; else 1.
    int Create(const char* value, const TTimeUnit<std::int64_t>& time, int absolute) noexcept;

    // Copies the value text out; when memory runs out the target stays as it was.
    void GetValue(CString& value) const noexcept;

    // The time in its target unit (picoseconds for the elements of a stimulus).
    std::int64_t GetTime() const noexcept { return time_.GetTime(); }

    // 1 when the time is a simulation time, 0 when it counts from the pattern's start.
    int Absolute() const noexcept { return absolute_; }

    // Whether the element is written with its time.
    void IncludeTime(bool include) noexcept { include_time_ = include; }

    // Writes the element as formula text: the value, a space, "@" when absolute, the number as
    // stored and the unit's name when it is not the target unit: "1 @10ns". Without its time the
    // value alone. Empty when memory runs out.
    void GenerateFormula(CString& out) const noexcept;

protected:
    friend class CStimulus;

    CString value_;
    TTimeUnit<std::int64_t> time_;
    int absolute_ = 0;
    bool include_time_ = true;
};
