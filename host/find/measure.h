#pragma once

#include <cstdint>

#include "host/find/streams.h"

// Figures of conditions over time. Times are picoseconds.
namespace corv::find {

// Lengths of time: the shortest and the longest, and where they begin.
struct Lengths {
    std::uint64_t count = 0;
    std::int64_t shortest = 0, shortest_at = 0;
    std::int64_t longest = 0, longest_at = 0;
    double sum = 0;

    void Add(std::int64_t length, std::int64_t at);
    double Mean() const { return count > 0 ? sum / static_cast<double>(count) : 0; }
};

// Of something that holds for stretches of time. Only whole stretches and periods count, not those
// that the window cuts.
struct LevelFigures {
    Lengths periods;             // from one beginning to the next
    Lengths high, low;           // how long it holds, and does not
    double duty = 0;             // the part of the whole periods in which it holds
    std::uint64_t glitches = 0;  // stretches of either kind shorter than a limit
    std::int64_t first_glitch = -1;
};
LevelFigures MeasureLevel(Level& level, std::int64_t shortest);

// The lengths between moments.
Lengths MeasureMoments(Moments& moments);

// How long data keeps still before and after the edges of a clock. A change at the very time of an
// edge comes after it, as in a simulation without delays.
struct SetupAndHold {
    std::uint64_t edges = 0;
    Lengths setup, hold;
};
SetupAndHold MeasureSetupAndHold(Moments& changes, Moments& edges);

}  // namespace corv::find
