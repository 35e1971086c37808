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

// A recorded signal as a stimulus: what it did in its recording it does again. Times are
// picoseconds; -1 stands for no event. One thread at a time may use it.
//
// Event files are temporary files of the host: every file named to Create is deleted when the
// library is detached (see corv/stimulus/event_files.h); names of registered streams stand for no
// file and are not.
class CORV_API CCustomStimulus {
public:
    // `start` is where the recording's reader is placed first.
    explicit CCustomStimulus(std::int64_t start = 0) noexcept;
    // The copy opens the recording again; the two share nothing. Without success it is empty.
    CCustomStimulus(const CCustomStimulus& other) noexcept;
    CCustomStimulus& operator=(const CCustomStimulus& other) noexcept;
    ~CCustomStimulus();

    // Opens a recording and finds a signal in it. ".", "/" and the hierarchy separator are alike in
    // its name; a signal that is written exactly so comes before one in another case, and one that
    // is declared by the name before an element of another. Returns 1, or 0 with the object empty
    // when the recording can't be opened (corv::LastStreamError says why) or has no such signal.
    int Create(const char* event_file, const char* signal) noexcept;

    // The same for the scalar of a handle of a reader, whatever its name. The object takes the
    // reader and ends it, without success too. A copy reads on with a shared one
    // (corv/stremo/stream_details.h), and is empty when the reader is a host's.
    int CreateFrom(stremo::IEventsStreamRead* reader, int handle) noexcept;

    // Closes the recording.
    void Destroy() noexcept;

    // The value that the signal has at a time, as text: 1 with the text written, 0 when it has none
    // yet.
    int GetValue(std::int64_t time, CString& value) noexcept;

    // The signal's first event strictly after a time.
    std::int64_t GetNextEventTime(std::int64_t time) noexcept;

    // The signal's type-description string, null for an empty object.
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
    // reader_ as one of the library's own, null for a host's, and the cursor of the former once
    // something has been asked
    corv::recording::SignalReader* own_reader_ = nullptr;
    int given_handle_ = -1;  // to CreateFrom
    std::unique_ptr<corv::recording::SignalCursor> cursor_;
};
