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

// What a signal did in a window, in order of time. A change may repeat the value before it.
struct Trace {
    std::string name;
    bool bus = false;                   // the value is that of several elements
    bool plain = false;                 // no level is meant by "1" or "Z"
    bool binary = false;                // the values are the bits of a vector, a digit for each
    std::optional<std::string> before;  // the value that the signal brought into the window
    std::vector<Change> changes;
    // Where more happened than `changes` tells. Inside, `changes` holds samples of the signal; what
    // it tells about the time from a stretch's last picosecond on is complete again.
    std::vector<TimeWindow> crowded;
    bool truncated = false;  // events behind the last change were left out
    // The last time that something is known of; nothing: the signal keeps its last value for good.
    std::optional<std::int64_t> known_until;
};

}  // namespace corv::host
