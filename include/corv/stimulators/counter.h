#pragma once

#include <cstdint>
#include <optional>

#include "corv/platform/cstring.h"
#include "corv/platform/export.h"
#include "corv/stimulators/counter_stimulus_info.h"

// Counters are registered once for all wires of a vector; each wire's stimulus refers to its
// counter by handle and wire (docs/formats/counters.md). A counter keeps one count period: the old
// value from its start on, the new one from its end on. A question past the end moves on to the
// next period, for all wires, so callers walk forward in time, from event to event. All times are
// picoseconds.

// One registered counter.
class CORV_API CCounterState {
public:
    // Reads a counter formula for a number of wires (the split mode is 0 for words, else
    // characters). Returns false for a formula that cannot be read, for a period below 1 ps, and
    // for a starting value or increment that is not a number in the formula's radix.
    bool Init(const char* formula, unsigned width, int split_mode) noexcept;

    // Moves the end of the period to a later time: counting starts at the latest start time of the
    // stimuli linked before the first question. Earlier times change nothing.
    void NoteStartTime(std::int64_t time) noexcept;

    // Stores the value of a wire (0 is the most significant) at a time and returns 1. Returns 0,
    // with the text unchanged, for a wire outside the width, before any start time was noted, for a
    // time before the period's start, and if there is no next period.
    int GetValue(unsigned wire, std::int64_t time, CString& value) noexcept;
    // Returns the first event of a wire after a time, -1 if there is none and where GetValue
    // returns 0.
    std::int64_t GetNextEventTime(unsigned wire, std::int64_t time) noexcept;

    // Moves on to the next period. Returns false if no start time was noted or the period's end is
    // past the range of times; the value has moved on even then.
    bool Advance() noexcept;

    // Moves the value on and writes the period from the current end on as a formula: "10#14
    // @0,10#15 @10". Returns false, with nothing written, for a counter without wires or period and
    // if out of memory.
    bool BuildSegment(CString& out) noexcept;

    // The number of wires.
    unsigned GetWidth() const noexcept { return width_; }

    // After an Init for one wire, makes that wire carry the whole value, "10#14". Returns false for
    // a counter that is not binary; its wire keeps showing one bit.
    bool MakeWhole() noexcept;

private:
    struct Shown {
        std::int64_t before;
        std::int64_t after;
    };
    struct Segment {
        std::int64_t begin;
        std::int64_t end;
        Shown shown;
    };

    std::int64_t NextValue() noexcept;
    std::int64_t ShownValue(std::int64_t value) const noexcept;
    Shown StepShown() noexcept;
    bool ReadPeriod() noexcept;
    bool Answers(unsigned wire) const noexcept;

    corv::CCounterStimulusInfo settings_;
    std::int64_t segment_end_ = -1;  // where counting starts, before the first period
    std::int64_t period_ = 0;
    std::int64_t increment_ = 0;
    std::int64_t current_ = 0;  // bits above the width may be set; they are never shown
    std::optional<Segment> segment_;
    unsigned width_ = 0;
    int split_mode_ = 0;  // as given; periods are numbers and need no splitting
    bool whole_ = false;
    bool ready_ = false;  // Init has succeeded
};

// Registers a counter and returns its handle: 0, 1, 2, … in the order of success. Returns -1,
// without using up a handle, for a formula that CCounterState::Init refuses and if out of memory.
CORV_API int RegisterCounter(const char* formula, unsigned width, int split_mode) noexcept;
// The same for a counter that drives one stimulus with its whole value; binary counters only.
CORV_API int RegisterWholeCounter(const char* formula) noexcept;
// Returns the counter of a handle, which the registry owns, or null.
CORV_API CCounterState* FindCounter(int handle) noexcept;

// A counter's handle and a wire: what a stimulus that follows a counter stores.
class CORV_API CCounterRef {
public:
    // Links to a wire by a reference text, "\counter\wire\2\handle\0", or registers a counter
    // formula of its own as a whole counter, and notes the stimulus's start time. Returns false if
    // there is no such counter or it cannot be registered.
    bool Init(const char* formula, std::int64_t start) noexcept;

    // Writes the reference text. Returns false, with nothing written, before handle and wire are
    // set and if out of memory.
    bool Format(CString& out) const noexcept;

    // Work as those of CCounterState; return 0 and -1 if the counter no longer exists.
    int GetValue(std::int64_t time, CString& value) const noexcept;
    std::int64_t GetNextEventTime(std::int64_t time) const noexcept;

    int handle = -1;
    int wire = -1;
};

namespace corv {

// Drops every registered counter; handles start at 0 again. For hosts that run many sessions in one
// process. Stimuli linked before have no values and no events afterwards, until their handle is
// assigned again.
CORV_API void ResetCounters() noexcept;

}  // namespace corv
