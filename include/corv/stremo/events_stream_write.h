#pragma once

#include <cstdint>

#include "corv/platform/export.h"

// A recording that is being written: first all signals, each composite one followed by its members,
// depth first, with their types and properties; then the events in order of time. Times are
// picoseconds. Every operation returns false if it cannot be done; corv::LastStreamError says why.
// An invalid argument is refused and changes nothing. After a failure of the disk or of memory
// nothing more is accepted, but what was written before can be read.
//
// Where an operation names a signal by its handle, it means the signal written last with that
// handle. This includes -1: whatever belongs to a signal without a handle is written directly after
// it.
class IEventsStreamWrite {
public:
    // Closes the recording unless Close was called. The owner of a writer deletes it.
    virtual ~IEventsStreamWrite() = default;

    // Writes what is left to write and closes the file. Returns false, also when called again, if
    // any part of the recording could not be written.
    virtual bool Close() = 0;

    // Returns whether the writer accepts more: it is open and nothing has failed.
    virtual bool IsReady() = 0;

    // Writes the type-description string of a signal that was written before.
    virtual bool WriteTypeInfo(int handle, const char* type) = 0;

    // Writes a scalar signal: its handle, name, mode and latest time (-1 or null for none), which
    // later events raise. Its place in the tree follows from the order of the calls; `parent` and
    // `index` are ignored. A handle of -1 is replaced by an unused one; the handle of an earlier
    // scalar makes this signal another name of that one. All other handles must be 0 or more.
    virtual bool WriteScalarSignal(int handle, const char* name, int parent, int index, int mode,
                                   const std::int64_t* max_time) = 0;

    // Writes a composite signal, whose `member_count` members are written next, depth first. A
    // handle of -1 is replaced by one that no signal of the recording has. The tree has at most 256
    // levels.
    virtual bool WriteCompositeSignal(int handle, std::uint32_t member_count, const char* name,
                                      int parent, int index, int mode,
                                      const std::int64_t* max_time) = 0;

    // Writes an event of a scalar signal: its 1 to 16 stored bytes, little-endian, of which those
    // after the eighth must be zero. Times must be 0 or more and must not decrease. Events at the
    // same time keep their order.
    virtual bool WriteEvent(int handle, const std::int64_t* time, const void* value,
                            unsigned size) = 0;

    // Writes a property of a signal that was written before.
    virtual bool WriteProperty(int handle, const char* key, const char* value) = 0;
};

namespace stremo {

// Creates an event file and returns a writer for it, which the caller deletes. An existing file of
// that name, or the one that a link of that name leads to, is replaced at once and its permissions
// are kept; readers that have it open keep the old content. /dev/stdout is written at its current
// position. Returns null if the file cannot be created; corv::LastStreamError says why.
CORV_API IEventsStreamWrite* CreateStreamWrite(const char* file_name) noexcept;

}  // namespace stremo
