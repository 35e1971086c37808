#pragma once

#include <cstddef>
#include <cstdint>

#include "corv/platform/export.h"
#include "corv/stremo/events_stream_read.h"

// What of a recording a picture of limited width can show.
namespace corv {

// Takes the events that ReadStreamOverview finds; made by the host. It must not throw.
class IStreamOverview {
public:
    // The event of a scalar at a time in picoseconds, its value in 16 bytes as ReadValue gives
    // them. The events of one scalar come in order of time, those of several in any order.
    virtual void Take(int handle, std::int64_t time, const void* value) = 0;

protected:
    ~IStreamOverview() = default;
};

// Reads the events that scalars have in a window which is divided into columns: the borders rise,
// the first is where the window starts, the last is where it ends (not included). Of the changes of
// a scalar's value within one column only the first two and the last are told, and no event that
// repeats a value; so a picture knows for each column whether nothing, one thing or more happened,
// when, and what the value is at its end, though the recording may have many times as many events.
// The place of the reader stays. False when the events can't be read, which LastStreamError tells,
// and, with no error told, for a reader that a host made.
CORV_API bool ReadStreamOverview(stremo::IEventsStreamRead& reader, const int* handles, int count,
                                 const std::int64_t* borders, std::size_t border_count,
                                 IStreamOverview& overview) noexcept;

}  // namespace corv
