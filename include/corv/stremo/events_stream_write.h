#pragma once

#include <cstdint>

#include "corv/platform/export.h"

// A recording that is being written. First all signals, each composite one followed by its members,
// depth first, and their types and properties; then the events in order of time. Times are
// picoseconds. Every operation gives false when it can't be done; corv::LastStreamError says why.
// An argument that makes no sense is refused and changes nothing. When the disk or the memory
// fails, nothing more is taken; what was written before can be read.
//
// Where an operation names a signal by its handle, the one that was written last with that handle
// is meant, -1 included: what belongs to a signal without a handle is written right behind it.
class IEventsStreamWrite {
public:
    // Closes the recording if Close was not called; a writer is ended with delete.
    virtual ~IEventsStreamWrite() = default;

    // Writes what is left to write and closes the file. False, also later, when a part of the
    // recording could not be written.
    virtual bool Close() = 0;

    // Whether the writer takes more: it is open and nothing has failed.
    virtual bool IsReady() = 0;

    // The type-description string of a signal that was written before.
    virtual bool WriteTypeInfo(int handle, const char* type) = 0;

    // A scalar signal: its handle, name, place in the tree, mode and latest time (-1 or null when
    // there is none), which the events raise. The place is told by the order of the calls; `parent`
    // and `index` are not looked at. One of handle -1 gets an unused handle, one whose handle an
    // earlier scalar has is another name of that signal. Handles are 0 or more.
    virtual bool WriteScalarSignal(int handle, const char* name, int parent, int index, int mode,
                                   const std::int64_t* max_time) = 0;

    // A composite signal, whose `member_count` members are written next, depth first. One of handle
    // -1 gets a handle that no signal of the recording has. At most 256 levels.
    virtual bool WriteCompositeSignal(int handle, std::uint32_t member_count, const char* name,
                                      int parent, int index, int mode,
                                      const std::int64_t* max_time) = 0;

    // An event of a scalar signal: its stored bytes, little-endian, 1 to 16 of which all behind the
    // eighth are zero. Times are 0 or more and must not fall. Events at one time keep their order.
    virtual bool WriteEvent(int handle, const std::int64_t* time, const void* value,
                            unsigned size) = 0;

    // A property of a signal that was written before.
    virtual bool WriteProperty(int handle, const char* key, const char* value) = 0;
};

namespace stremo {

// Makes an event file and a writer for it, which the caller ends with delete. A file of that name,
// or the one that a link of that name leads to, is replaced at once and its permissions are kept;
// readers that have it open keep what they have. /dev/stdout is written where it stands. Null when
// the file can't be made; corv::LastStreamError says why.
CORV_API IEventsStreamWrite* CreateStreamWrite(const char* file_name) noexcept;

}  // namespace stremo
