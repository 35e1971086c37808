#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

#include "corv/stremo/events_stream_read.h"
#include "corv/stremo/stream_overview.h"

// Questions about one signal of a recording. A replay asks for the next event and the value of one
// signal again and again; here the answers come from that signal's own columns and cost the same
// whatever else is in the recording.
namespace corv::recording {

// Times are picoseconds. Rising times are fastest; any order is allowed. Questions may be mixed
// with those to the reader, whose position does not change.
class SignalCursor {
public:
    virtual ~SignalCursor() = default;

    // Returns the time of the first event strictly after a time; -1 if there is none, and on
    // failure (corv::LastStreamError is not empty then).
    virtual std::int64_t NextTime(std::int64_t time) = 0;

    // Stores the value at a time, which is that of the last event at or before it, in 16 bytes as
    // ReadValue does. Returns false if there is no such event, and on failure.
    virtual bool Value(std::int64_t time, void* value) = 0;

    // Returns the time of the last event, -1 as above.
    virtual std::int64_t LastTime() = 0;
};

// What the library's own readers can do in addition to the operations of IEventsStreamRead.
class SignalReader : public stremo::IEventsStreamRead {
public:
    // Returns another reader of the same recording with a position of its own; what one has read
    // serves all. They may end in any order. Returns null if out of memory.
    virtual std::unique_ptr<SignalReader> Share() noexcept = 0;

    // Sets the scalars of interest of this reader and of those shared from it later, from the next
    // Seek on; the others may then have no events and no values. An empty list means all. It is a
    // hint, with which large files of other formats are read faster and in less memory; other
    // signals can still be opened.
    virtual void SetInterest(std::span<const int> handles) = 0;

    // Returns a cursor for a scalar's handle, which must not be used after the reader has ended.
    // Returns null for other handles, if the events cannot be read, and if out of memory.
    virtual std::unique_ptr<SignalCursor> OpenSignal(int handle) noexcept = 0;

    // Returns the name of a top-level signal without looking at anything else; empty for an index
    // outside.
    virtual std::string_view SignalName(int index) noexcept = 0;
    // See ReadStreamOverview.
    virtual bool ReadOverview(std::span<const int> handles, std::span<const std::int64_t> borders,
                              IStreamOverview& overview) noexcept = 0;

    // Returns the number of events of all signals, as far as they can be read.
    virtual std::uint64_t EventCount() noexcept = 0;

    // Return the number of notes about the file, and each as a sentence: what was repaired, assumed
    // or lost.
    virtual int NoteCount() noexcept = 0;
    virtual const char* Note(int index) noexcept = 0;
};

// Returns the reader as one of the library's own, null for one implemented by a host.
SignalReader* OwnReader(stremo::IEventsStreamRead* reader) noexcept;

}  // namespace corv::recording
