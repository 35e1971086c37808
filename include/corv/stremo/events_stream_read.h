#pragma once

#include <cstdint>

#include "corv/platform/cstring.h"
#include "corv/platform/export.h"

namespace stremo {

// A recording that is being read: signals, each with a handle, and the value changes (events) of
// the scalar ones in order of time. Times are picoseconds. Values are the stored bytes of a scalar,
// little-endian; a buffer for one has 16 bytes, the rest of which is filled with zeros.
//
// Several names of one signal may share a handle; questions about it are answered for the name for
// which GetSignalHandle or GetSubSignalHandle returned it last.
//
// Texts that the reader returns belong to it and live as long as it does. One thread at a time may
// use a reader.
class IEventsStreamRead {
public:
    // Closes the recording. The owner of a reader deletes it.
    virtual ~IEventsStreamRead() = default;

    // Returns the name of the file's format, such as "corv event file".
    virtual const char* GetFormatName() = 0;

    // Returns the number of top-level signals.
    virtual int GetSignalCount() = 0;
    // Return the handle of a composite signal's sub-signal and of a top-level signal; -1 for an
    // index outside.
    virtual int GetSubSignalHandle(int parent, int index) = 0;
    virtual int GetSignalHandle(int index) = 0;

    // Stores what the recording says about a signal: whether it has sub-signals and how many, its
    // name (for a sub-signal, the part after its parent's), mode and latest time. For an unknown
    // handle these are false, 0, an empty name, 0 and -1.
    virtual void GetSignalInfo(int handle, bool& has_sub_signals, int& sub_signal_count,
                               CString& name, int& mode, std::int64_t& max_time) = 0;

    // Returns a property that the recording keeps for a signal, null if there is none. The case of
    // the key does not matter.
    virtual const char* GetSignalProperty(int handle, const char* key) = 0;

    // Returns the signal's type-description string; empty if the recording has none for it, null
    // for an unknown handle.
    virtual const char* GetTypeString(int handle) = 0;

    // Moves to just before the first event at or after a time: GetCurrentTime then returns the time
    // of the last event before it, -1 if there is none. Returns false if that place cannot be read.
    virtual bool Seek(const std::int64_t* time) = 0;

    // Returns the time of the event that Next moved to, or of the place that Seek moved to.
    virtual const std::int64_t* GetCurrentTime() = 0;

    // Moves to the next event and returns its signal's handle. Returns -1 at the end, and if the
    // recording cannot be read any further; only then corv::LastStreamError is not empty.
    virtual int Next() = 0;

    // Stores the value of the event that Next moved to. Returns false if there is none.
    virtual bool ReadValue(void* value) = 0;

    // Stores the value that a scalar signal had at the place of the last Seek. Returns false if it
    // had none yet.
    virtual bool GetCachedValue(int handle, void* value) = 0;

    // A hint: the recording is going to be used from this time on.
    virtual void MarkStart(const std::int64_t* time) = 0;
};

// Opens a recording and returns its reader, which the caller deletes. A name registered with
// RegisterStream is opened by its factory. A file is found by its exact name, otherwise by the only
// name in its folder that is equal without regard to case; its format is recognised by its content.
// Returns null if it cannot be opened; corv::LastStreamError says why.
CORV_API IEventsStreamRead* CreateStreamRead(const char* file_name) noexcept;

}  // namespace stremo
