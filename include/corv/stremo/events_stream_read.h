#pragma once

#include <cstdint>

#include "corv/platform/cstring.h"
#include "corv/platform/export.h"

namespace stremo {

// A recording that is being read: signals, each with a handle, and the value changes (events) of
// the scalar ones in order of time. Times are picoseconds. Values are the stored bytes of a scalar,
// little-endian; a buffer for one holds 16 bytes and is filled up with zeros.
//
// A handle may stand for several names of one signal; questions about it are answered for the one
// that GetSignalHandle or GetSubSignalHandle gave last.
//
// Texts that the reader gives belong to it and live until its end. A reader is used by one thread
// at a time.
class IEventsStreamRead {
public:
    // Closes the recording; a reader is ended with delete.
    virtual ~IEventsStreamRead() = default;

    // The name of the file's format, such as "corv event file".
    virtual const char* GetFormatName() = 0;

    // The top-level signals: their number, and the handle at an index, -1 outside.
    virtual int GetSignalCount() = 0;
    // The handle of a composite signal's sub-signal, -1 outside.
    virtual int GetSubSignalHandle(int parent, int index) = 0;
    virtual int GetSignalHandle(int index) = 0;

    // What the recording says of a signal: whether it has sub-signals and how many, its name (of a
    // sub-signal the part behind its parent's), mode and latest time. An unknown handle gives
    // false, 0, an empty name, 0 and -1.
    virtual void GetSignalInfo(int handle, bool& has_sub_signals, int& sub_signal_count,
                               CString& name, int& mode, std::int64_t& max_time) = 0;

    // A property that the recording keeps for a signal, the key in any case; null when there is
    // none.
    virtual const char* GetSignalProperty(int handle, const char* key) = 0;

    // The signal's type-description string; empty when the recording has none for it, null for an
    // unknown handle.
    virtual const char* GetTypeString(int handle) = 0;

    // Goes to just before the first event at or after a time: GetCurrentTime is then the time of
    // the last event before it, -1 when there is none. False when the place can't be read.
    virtual bool Seek(const std::int64_t* time) = 0;

    // The time of the event that Next moved to, or of the place that Seek went to.
    virtual const std::int64_t* GetCurrentTime() = 0;

    // Moves to the next event and gives its signal's handle; -1 at the end and when the recording
    // can't be read on, which corv::LastStreamError tells apart.
    virtual int Next() = 0;

    // The value of the event that Next moved to; false when there is none.
    virtual bool ReadValue(void* value) = 0;

    // The value that a scalar signal had at the place of the last Seek; false when it had none yet.
    virtual bool GetCachedValue(int handle, void* value) = 0;

    // Tells the time at which the use of the recording begins. A hint only.
    virtual void MarkStart(const std::int64_t* time) = 0;
};

// Opens a recording; the caller ends it with delete. A name that RegisterStream knows is opened by
// its factory. A file is found by its exact name, else by the only name in its folder that is equal
// without regard to case; its format is told by its content. Null when it can't be opened;
// corv::LastStreamError says why.
CORV_API IEventsStreamRead* CreateStreamRead(const char* file_name) noexcept;

}  // namespace stremo
