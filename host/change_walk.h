#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "corv/signals/signal.h"
#include "host/recording.h"
#include "host/trace.h"
#include "host/value_writer.h"

namespace corv::host {

// A walk over the times at which signals of a recording have events, with the values that they have
// then. Nothing is kept but the current values, so that memory does not grow with the recording.
//
// Throws std::runtime_error, with a sentence, when the recording can't be read on.
class ChangeWalk {
public:
    // Begins before the window, the end of which is included. The recording must outlive the
    // object, which moves its reader.
    ChangeWalk(const Recording& recording, const std::vector<ISignal*>& signals, TimeWindow window);

    // Moves to the next time with an event; false after the last one.
    bool Next();

    std::int64_t time() const { return time_; }
    // The signals, by their numbers, that have events at this time, in no order.
    std::span<const std::size_t> Changed() const { return changed_; }
    // The values of the leaves of a signal, those that it brings into the window before the first
    // Next.
    std::span<const LeafValue> Values(std::size_t signal) const;

private:
    struct Leaf {
        std::size_t signal;
        std::size_t place;  // among all values
        std::int32_t next;  // another leaf of the same handle, -1: none
    };

    void AddLeaf(int handle, std::size_t signal);
    void ReadFirstValues(const std::vector<int>& handles);
    void Take(int handle, const void* value);
    void MoveOn();

    const Recording& recording_;
    TimeWindow window_;
    std::int64_t time_ = -1;
    std::vector<std::size_t> begins_;  // of the signals among the values
    std::vector<LeafValue> values_;
    std::vector<Leaf> leaves_;
    std::vector<std::int32_t> first_leaf_;  // of a handle, -1: none
    std::vector<std::size_t> changed_;
    std::vector<bool> is_changed_;
    int next_ = -1;  // the handle of the event that is read next, -1 at the end
};

}  // namespace corv::host
