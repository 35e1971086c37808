#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "corv/platform/export.h"
#include "corv/stremo/events_stream_read.h"

// Functions around the readers and writers of recordings: names for the host's own recordings, the
// reason of a failure, the progress of reading, and what the library's readers can do in addition
// to the operations of all readers.

namespace stremo {

// Registers a name such as "corv:replay:1" for recordings that the host provides: CreateStreamRead
// and custom formulas with that name then call the factory, which returns a reader that the caller
// owns, or null. Case does not matter. A registered name does not mean a file and is never
// remembered for deletion. Returns false for an empty name, an empty factory, a name that is
// already taken, and if out of memory.
CORV_API bool RegisterStream(const char* name,
                             std::function<IEventsStreamRead*()> factory) noexcept;

// Removes a name. Returns false if it is not registered. Open readers stay open.
CORV_API bool UnregisterStream(const char* name) noexcept;

}  // namespace stremo

namespace corv {

// Returns why the last operation could not open, create, read or write a recording: one sentence
// without a full stop, with the name of the file and, where there is one, the place in it
// ("run.evt: byte 4096: the block does not match its checksum"). It is empty if nothing has failed.
// Each thread has its own; the text is valid until the thread's next operation on a recording.
CORV_API const char* LastStreamError() noexcept;

// Receives how many bytes of a file have been read, and how many there are. In the last call for a
// file both are equal.
using StreamProgress = std::function<void(std::uint64_t done, std::uint64_t all)>;

// Sets a function that is called every few megabytes while a large recording of another format is
// read from beginning to end, which happens when it is opened or first asked for events. An empty
// function, or detaching the library, ends the calls. Exceptions of the function are ignored.
CORV_API void SetStreamProgress(StreamProgress progress) noexcept;

// Opens a GHW recording as stremo::CreateStreamRead does, but with a given unit of its times: 0 fs
// to 7 hr (corv/util/time_units.h). A GHW file does not state the unit. In most files it follows
// from the units of the type time; otherwise femtoseconds are assumed, which is wrong for a
// simulation with a coarser resolution. Any other number leaves the unit to the file.
//
// Returns null if the recording cannot be opened (LastStreamError says why), and for a file of
// another format as well. Names of registered streams are not looked up.
CORV_API std::unique_ptr<stremo::IEventsStreamRead> OpenGhwRecording(const char* file_name,
                                                                     int time_unit) noexcept;

// For a reader implemented by a host, SelectStreamSignals does nothing, ShareStream returns null,
// and GetStreamNotes returns no notes.

// Selects the scalars whose events are wanted from the next Seek on. The others may then have no
// events, and large recordings are read faster and in less memory. The selection applies to this
// reader and to those shared from it afterwards, not to others. No handles mean all scalars.
CORV_API void SelectStreamSignals(stremo::IEventsStreamRead& reader,
                                  std::span<const int> handles) noexcept;

// Returns another reader of the same recording with a position of its own; the two may be deleted
// in any order. What one of them has read from the file serves both; the new one begins with this
// one's selection. Returns null if out of memory.
CORV_API std::unique_ptr<stremo::IEventsStreamRead> ShareStream(
    stremo::IEventsStreamRead& reader) noexcept;

// Returns what was repaired, assumed or lost so far when the recording was read, one sentence each.
// Returns no notes if out of memory.
CORV_API std::vector<std::string> GetStreamNotes(stremo::IEventsStreamRead& reader) noexcept;

}  // namespace corv
