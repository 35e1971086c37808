#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "host/find/syntax.h"
#include "host/find/time_list.h"

// Conditions over time as streams that are read once, forward. Times are picoseconds.
namespace corv::find {

// Something that holds for stretches of time: whether it does at the beginning, and the times at
// which it changes, strictly rising.
class Level {
public:
    virtual ~Level() = default;
    virtual bool AtFirst() const = 0;
    virtual std::int64_t Next() = 0;  // -1 at the end
};

// Something that happens at moments, strictly rising.
class Moments {
public:
    virtual ~Moments() = default;
    virtual std::int64_t Next() = 0;  // -1 at the end
};

using LevelPtr = std::unique_ptr<Level>;
using MomentsPtr = std::unique_ptr<Moments>;

LevelPtr ListedLevel(bool at_first, const TimeList& changes);
LevelPtr Not(LevelPtr level);
LevelPtr Join(LevelPtr left, LevelPtr right, std::function<bool(bool, bool)> join);
// The level as it was a picosecond before, from a time on.
LevelPtr Before(LevelPtr level);
// Whether the level has held for a time, counted from `start` where it held at first.
LevelPtr HeldFor(LevelPtr level, std::int64_t time, std::int64_t start);
// Whether nothing has happened for a time; at `start` it has, or nothing is known yet.
LevelPtr QuietFor(MomentsPtr changes, std::int64_t time, std::int64_t start, bool known_at_start);

// Without what comes after a time.
LevelPtr Until(LevelPtr level, std::int64_t end);
MomentsPtr Until(MomentsPtr moments, std::int64_t end);

MomentsPtr ListedMoments(const TimeList& times);
// When the level begins to hold, or ends.
MomentsPtr Edges(LevelPtr level, bool rising);
// The moments at which the level holds.
MomentsPtr During(MomentsPtr moments, LevelPtr level);
MomentsPtr Both(MomentsPtr left, MomentsPtr right);
MomentsPtr Either(MomentsPtr left, MomentsPtr right);
// The moments that have one of the others within a time on that side, or have none.
MomentsPtr Within(MomentsPtr moments, MomentsPtr others, std::int64_t time, Node::Side side,
                  bool negated);

}  // namespace corv::find
