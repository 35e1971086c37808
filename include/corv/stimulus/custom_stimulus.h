#pragma once

#include <cstdint>
#include <memory>

#include "corv/containers/signal_container.h"
#include "corv/frame/com_ptr.h"
#include "corv/platform/cstring.h"
#include "corv/platform/export.h"
#include "corv/signals/signal.h"
#include "corv/stremo/events_stream_read.h"

namespace corv::recording {
class SignalCursor;
class SignalReader;
}  // namespace corv::recording

// A recorded signal as a stimulus: it repeats what the signal did in its recording. Times are
// picoseconds; -1 means no event. One thread at a time may use it.
//
// Event files are temporary files of the host: every file named to Create is deleted when the
// library is detached (see corv/stimulus/event_files.h). Names of registered streams are not files,
// so nothing is deleted for them.
class CORV_API CCustomStimulus {
public:
    // `start` is the time at which the recording's reader is placed first.
    explicit CCustomStimulus(std::int64_t start = 0) noexcept;
    // The copy opens the recording again; the two share nothing. If that fails, the copy is empty.
    CCustomStimulus(const CCustomStimulus& other) noexcept;
    CCustomStimulus& operator=(const CCustomStimulus& other) noexcept;
    ~CCustomStimulus();

    // Opens a recording and finds a signal in it. ".", "/" and the hierarchy separator are
    // equivalent in its name. An exact match comes before one in another case, and a signal
    // declared under the name before an element of another one. Returns 1, or 0 with the object
    // empty if the recording cannot be opened (corv::LastStreamError says why) or has no such
    // signal.
    int Create(const char* event_file, const char* signal) noexcept;

    // The same for the scalar with a certain handle of a reader, whatever its name. The object
    // takes ownership of the reader, even if it fails. A copy uses a shared reader
    // (corv/stremo/stream_details.h), and is empty if the reader is one of the host's own class.
    int CreateFrom(stremo::IEventsStreamRead* reader, int handle) noexcept;

    // Closes the recording.
    void Destroy() noexcept;

    // Stores the value that the signal has at a time, as text, and returns 1; returns 0 if it has
    // none yet.
    int GetValue(std::int64_t time, CString& value) noexcept;

    // Returns the signal's first event strictly after a time.
    std::int64_t GetNextEventTime(std::int64_t time) noexcept;

    // Returns the signal's type-description string, null for an empty object.
    const char* GetSignalTypeInfo() const noexcept;

private:
    bool Open() noexcept;
    void Begin() noexcept;
    corv::recording::SignalCursor* Cursor() noexcept;
    void ClearHandleMan(ISignal* signal) noexcept;
    bool QueryCache(IHandleManager* manager) noexcept;
    bool TakeEvents(IHandleManager* manager, std::int64_t time) noexcept;
    bool TakeValue(std::int64_t time) noexcept;

    std::int64_t start_time_;
    std::unique_ptr<stremo::IEventsStreamRead> reader_;
    corv::frame::ComPtr<ISignalContainer> container_;
    ISignal* signal_ = nullptr;  // of the container
    CString file_name_;
    CString signal_name_;
    // reader_ as one of the library's own readers, null for a host's; cursor_ is its cursor, made
    // at the first question
    corv::recording::SignalReader* own_reader_ = nullptr;
    int given_handle_ = -1;  // to CreateFrom
    std::unique_ptr<corv::recording::SignalCursor> cursor_;
};
