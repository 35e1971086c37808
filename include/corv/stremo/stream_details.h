#pragma once

#include <cstdint>

#include "corv/platform/export.h"
#include "corv/stremo/events_stream_read.h"

// What the library's own readers can do in addition to the operations of all readers. For a reader
// implemented by a host, selecting does nothing, the numbers are 0, and sharing returns null.
namespace corv {

// Selects the scalars whose events are wanted from the next Seek on. The others may then have no
// events, and large recordings are read faster and in less memory. The selection applies to this
// reader and to those shared from it afterwards, not to others. A count of 0 means all scalars.
CORV_API void SelectStreamSignals(stremo::IEventsStreamRead& reader, const int* handles,
                                  int count) noexcept;

// Returns another reader of the same recording with a position of its own, which the caller
// deletes, in any order. What one of them has read from the file serves all; the new one begins
// with this one's selection. Returns null if out of memory.
CORV_API stremo::IEventsStreamRead* ShareStream(stremo::IEventsStreamRead& reader) noexcept;

// Return what was repaired, assumed or lost when the recording was read: the number of notes, and
// each as a sentence, null for an index outside. The texts live as long as the reader.
CORV_API int CountStreamNotes(stremo::IEventsStreamRead& reader) noexcept;
CORV_API const char* GetStreamNote(stremo::IEventsStreamRead& reader, int index) noexcept;

}  // namespace corv
