#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace corv::host {

// A stretch of time in picoseconds, from `start` up to but not including `end`.
struct TimeWindow {
    std::int64_t start = 0;
    std::int64_t end = 0;
};

struct Change {
    std::int64_t time;
    std::string value;  // as value text
};

// What a signal does in a window, in order of time. A change may repeat the value before it.
struct Trace {
    std::string name;
    bool bus = false;                   // the value is that of several elements
    bool plain = false;                 // "1" and "Z" are not levels
    bool binary = false;                // the values are the bits of a vector, one digit each
    std::optional<std::string> before;  // the value that the signal has before the window
    std::vector<Change> changes;
    // Where more happens than `changes` shows. Inside, `changes` has samples only; from a stretch's
    // last picosecond on it is complete again.
    std::vector<TimeWindow> crowded;
    bool truncated = false;  // events after the last change were left out
    // The last known time; nullopt: the signal keeps its last value forever.
    std::optional<std::int64_t> known_until;
};

}  // namespace corv::host
