#pragma once

#include <cstdint>
#include <map>

#include "corv/platform/export.h"

// The times at which a stimulator switches on or off, in picoseconds, each with the state that
// begins there. As text they are the times alone, from the first on, which is on, then alternately:
// "100ns;200ns;1us" switches on at 100 ns, off at 200 ns and on again at 1 us.
//
// Only changes are kept: an entry that is added where the same state holds already is dropped, and
// a single entry is never off. An entry behind the one that is added is not looked at, so times
// that are not added in ascending order may leave two entries of one state in a row.
//
// When memory runs out, the object keeps what it has.
class CORV_API CStimState {
public:
    // No times; the walk stands at the end.
    CStimState() noexcept = default;
    // Copies stand at the same time of their walk.
    CStimState(const CStimState& other) noexcept;
    CStimState& operator=(const CStimState& other) noexcept;
    ~CStimState();

    // Adds the times of a text to those that are there, the first as on. A part between ";" that
    // TextToTime does not read is skipped; a time without a unit counts picoseconds; fractions of a
    // picosecond are cut off. False for null, and when memory runs out, with the times before that
    // added.
    bool Create(const char* text) noexcept;

    // Switches on or off at a time.
    void Add(std::int64_t time, bool on) noexcept;

    // Writes the text, each time in the largest unit in which it is whole, and gives its length
    // with the terminating zero, which is asked for with a null buffer. The buffer has room for one
    // character at least and holds an empty text when the result is 0: without times, when the size
    // is too small and when memory runs out.
    unsigned int Store(char* buffer, unsigned int size) const noexcept;

    // Walk the times in ascending order; -1 at the end. After Create and Add a walk starts again
    // with FirstState.
    std::int64_t FirstState() noexcept;
    std::int64_t NextState() noexcept;

    // The state at a time: that of the last entry up to it, off before the first one.
    bool IsOn(std::int64_t time) const noexcept;

private:
    using States = std::map<std::int64_t, bool>;

    bool Record(std::int64_t time, bool on) noexcept;
    void Erase(States::const_iterator entry) noexcept;

    States states_;
    States::const_iterator position_ = states_.end();
};
