#pragma once

#include <cstdint>
#include <map>

#include "corv/platform/export.h"

// The times at which a stimulator switches on or off, in picoseconds, each with the state that
// begins there. The text has the times alone; the first switches on, and the states alternate from
// there: "100ns;200ns;1us" switches on at 100 ns, off at 200 ns and on again at 1 us.
//
// Only changes are kept: an entry is dropped if the same state already holds at its time, and a
// single entry is never off. Later entries are not checked, so adding times out of order can leave
// two consecutive entries with the same state.
//
// If out of memory, the object keeps what it has.
class CORV_API CStimState {
public:
    // An object without times, whose walk is at the end.
    CStimState() noexcept = default;
    // A copy's walk is at the same time.
    CStimState(const CStimState& other) noexcept;
    CStimState& operator=(const CStimState& other) noexcept;
    ~CStimState();

    // Adds the times of a text to the existing ones; the first switches on. A part between ";" that
    // TextToTime cannot read is skipped; a time without a unit is in picoseconds; fractions of a
    // picosecond are cut off. Returns false for null, and if out of memory, with the times up to
    // that point added.
    bool Create(const char* text) noexcept;

    // Switches on or off at a time.
    void Add(std::int64_t time, bool on) noexcept;

    // Writes the text, each time in the largest unit in which it is whole, and returns its size
    // including the terminating zero; pass a null buffer to query the size. Returns 0 for an object
    // without times, if `size` is too small, and if out of memory; the buffer, which must have room
    // for at least one character, then contains an empty text.
    unsigned int Store(char* buffer, unsigned int size) const noexcept;

    // Walk the times in ascending order and return -1 at the end. After Create and Add, start the
    // walk again with FirstState.
    std::int64_t FirstState() noexcept;
    std::int64_t NextState() noexcept;

    // Returns the state at a time: that of the last entry at or before it, off before the first
    // entry.
    bool IsOn(std::int64_t time) const noexcept;

private:
    using States = std::map<std::int64_t, bool>;

    bool Record(std::int64_t time, bool on) noexcept;
    void Erase(States::const_iterator entry) noexcept;

    States states_;
    States::const_iterator position_ = states_.end();
};
