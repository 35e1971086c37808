#pragma once

#include <cstddef>
#include <cstdint>

#include "corv/platform/export.h"
#include "corv/stremo/events_stream_read.h"

// As much of a recording as a picture of limited width can show.
namespace corv {

// Receives the events that ReadStreamOverview finds. Implemented by the host; it must not throw.
class IStreamOverview {
public:
    // Receives an event of a scalar at a time in picoseconds, with its value in 16 bytes as
    // ReadValue stores it. The events of one scalar come in order of time, those of several scalars
    // in any order.
    virtual void Take(int handle, std::int64_t time, const void* value) = 0;

protected:
    ~IStreamOverview() = default;
};

// Reads the events that scalars have in a window divided into columns. The borders are in rising
// order: the first is the start of the window, the last is its end (not included). Of the changes
// of a scalar's value within one column only the first two and the last are delivered, and never an
// event that repeats a value. So a picture knows for each column whether nothing, one thing or more
// happened, when, and what the value is at its end, however many events the recording has. The
// position of the reader does not change. Returns false if the events cannot be read
// (LastStreamError says why), and for a reader implemented by a host (LastStreamError is empty).
CORV_API bool ReadStreamOverview(stremo::IEventsStreamRead& reader, const int* handles, int count,
                                 const std::int64_t* borders, std::size_t border_count,
                                 IStreamOverview& overview) noexcept;

}  // namespace corv
