#pragma once

#include <cstdint>

#include "corv/platform/export.h"
#include "corv/stimulus/simple_stimulus.h"
#include "corv/stimulus/time_unit.h"

class CCustomStimulus;

// Walks the events of a recorded signal. The element that it returns is the iterator itself, with
// an absolute time in picoseconds; the next step overwrites it. The stimulus must outlive it.
class CORV_API CCustomIterator : public CSimpleStimulus {
public:
    // A null stimulus has no events.
    explicit CCustomIterator(CCustomStimulus* stimulus) noexcept;

    // Goes back to the first event.
    void Reset() noexcept;

    // Returns the next event, null after the last one; the walk then starts over.
    const CSimpleStimulus* Next() noexcept;

private:
    CCustomStimulus* stimulus_;
    TTimeUnit<std::int64_t> current_;
};
