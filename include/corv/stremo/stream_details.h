#pragma once

#include <cstdint>

#include "corv/platform/export.h"
#include "corv/stremo/events_stream_read.h"

// What the library's own readers know besides the operations of all readers. Of a reader that a
// host made nothing is known: the selecting changes nothing, the numbers are 0, it is not shared.
namespace corv {

// Tells which scalars' events are asked for, from the next Seek on: the others may then have none,
// and large recordings are read faster and in less memory. It holds for this reader and those that
// are shared from it afterwards, and narrows no other. A count of 0 stands for all.
CORV_API void SelectStreamSignals(stremo::IEventsStreamRead& reader, const int* handles,
                                  int count) noexcept;

// Another reader of the same recording with a place of its own; the caller ends it with delete, in
// any order. What one of them has read from the file serves all; the new one begins with this one's
// selection. Null when memory runs out.
CORV_API stremo::IEventsStreamRead* ShareStream(stremo::IEventsStreamRead& reader) noexcept;

// What was repaired, guessed or lost when the recording was read, one sentence each; a null text
// for an index outside. The texts live as long as the reader.
CORV_API int CountStreamNotes(stremo::IEventsStreamRead& reader) noexcept;
CORV_API const char* GetStreamNote(stremo::IEventsStreamRead& reader, int index) noexcept;

}  // namespace corv
