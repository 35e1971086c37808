#pragma once

#include <cstdint>

// A recording that is being written. First all signals, each composite one followed by its members,
// depth first, and their types and properties; then the events in order of time. Times are
// picoseconds. Every operation gives false when it can't be done.
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

    // A scalar signal: its handle, name, place in the tree, mode and latest time.
    virtual bool WriteScalarSignal(int handle, const char* name, int parent, int index, int mode,
                                   const std::int64_t* max_time) = 0;

    // A composite signal, whose `member_count` members are written next. One of handle -1 gets an
    // unused handle.
    virtual bool WriteCompositeSignal(int handle, std::uint32_t member_count, const char* name,
                                      int parent, int index, int mode,
                                      const std::int64_t* max_time) = 0;

    // An event of a scalar signal: its stored bytes, little-endian. Times must not fall.
    virtual bool WriteEvent(int handle, const std::int64_t* time, const void* value,
                            unsigned size) = 0;

    // A property of a signal that was written before.
    virtual bool WriteProperty(int handle, const char* key, const char* value) = 0;
};
