#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

#include "corv/stremo/events_stream_read.h"
#include "corv/stremo/stream_overview.h"

// Questions about one signal of a recording. A replay asks for the next event and the value of one
// signal again and again; here the answers come from that signal's own index and cost the same
// whatever else the recording holds.
namespace corv::recording {

// Times are picoseconds. Asking at rising times is fastest; any order is allowed. Questions may be
// mixed with those to the reader, whose place they don't move.
class SignalCursor {
public:
    virtual ~SignalCursor() = default;

    // The time of the first event strictly after a time; -1 when there is none, and on failure
    // (corv::LastStreamError is not empty then).
    virtual std::int64_t NextTime(std::int64_t time) = 0;

    // The value at a time: that of the last event at or before it. 16 bytes as ReadValue gives
    // them. False when there is no such event, and on failure.
    virtual bool Value(std::int64_t time, void* value) = 0;

    // The time of the last event, -1 as above.
    virtual std::int64_t LastTime() = 0;
};

// What the library's own readers can do besides the listed operations.
class SignalReader : public stremo::IEventsStreamRead {
public:
    // Another reader of the same recording, with a place of its own: what one has read serves all.
    // Each may end before the others. Null when memory runs out.
    virtual std::unique_ptr<SignalReader> Share() noexcept = 0;

    // Tells the scalars of interest of this reader and of those shared from it later, from the next
    // Seek on; the others may then have no events and no values. No handles: all, as if never told.
    // A hint, by which large files of other formats are read faster and in less memory. Signals
    // outside of it can be opened all the same.
    virtual void SetInterest(std::span<const int> handles) = 0;

    // A cursor for a scalar's handle; it must not be used after the reader's end. Null for other
    // handles and when the events can't be read or memory runs out.
    virtual std::unique_ptr<SignalCursor> OpenSignal(int handle) noexcept = 0;

    // The name of a top-level signal, without a look at anything else; empty outside.
    virtual std::string_view SignalName(int index) noexcept = 0;
    // See ReadStreamOverview.
    virtual bool ReadOverview(std::span<const int> handles, std::span<const std::int64_t> borders,
                              IStreamOverview& overview) noexcept = 0;

    // The number of events of all signals, as far as they can be read.
    virtual std::uint64_t EventCount() noexcept = 0;

    // The number of things worth telling about the file, and each as a sentence: what was repaired,
    // guessed or lost.
    virtual int NoteCount() noexcept = 0;
    virtual const char* Note(int index) noexcept = 0;
};

// The reader as one of the library's own; null for one that a host made.
SignalReader* OwnReader(stremo::IEventsStreamRead* reader) noexcept;

}  // namespace corv::recording
