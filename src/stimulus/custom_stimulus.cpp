// Replays a recorded signal. There are two strategies:
//
//
// A reader of the library's own is asked through a SignalCursor, which reads only the blocks in
// which the signal changes, remembers its position, and answers a walk forward in constant time.
//
//
// A reader that a host made has only the operations of IEventsStreamRead. Each question seeks to a
// time and reads events from there; the handle manager of the loaded container recognises the
// signal's events by their handle. This is slower by the length of what has to be read, but works
// with any reader.
//
//
// In both cases the value ends up as an event at time 0 of the signal's own wave, so that its text
// is made in the same way as for any other signal.

#include "corv/stimulus/custom_stimulus.h"

#include <array>
#include <limits>

#include "corv/stremo/stream_details.h"
#include "platform/guard.h"
#include "stimulus/event_files.h"
#include "stimulus/recorded_signals.h"
#include "stremo/signal_cursor.h"

using corv::frame::ComPtr;

namespace {

using ValueBuffer = std::array<unsigned char, 16>;

ComPtr<IHandleManager> ManagerOf(ISignalContainer& container) noexcept {
    ComPtr<IHandleManager> manager;
    container.GetHandleManager(manager.Out());
    return manager;
}

// Replaces the value that a signal has at time 0. The wave has at most this one event, which
// AddEvent overwrites.
void PutValue(ISignal& signal, const ValueBuffer& value) noexcept {
    if (ISignalWave* const wave = signal.GetWave()) {
        wave->AddEvent(0, 0, value.data(), wave->GetValueSize());
    }
}

}  // namespace

CCustomStimulus::CCustomStimulus(std::int64_t start) noexcept : start_time_(start) {}

CCustomStimulus::CCustomStimulus(const CCustomStimulus& other) noexcept
    : start_time_(other.start_time_) {
    *this = other;
}

CCustomStimulus& CCustomStimulus::operator=(const CCustomStimulus& other) noexcept {
    if (this != &other) {
        Destroy();
        start_time_ = other.start_time_;
        const bool copied = corv::platform::Done([&] {
            file_name_ = other.file_name_;
            signal_name_ = other.signal_name_;
        });
        if (other.given_handle_ != -1) {
            CreateFrom(corv::ShareStream(*other.reader_), other.given_handle_);
        } else if (!copied || !other.reader_ || !Open()) {
            Destroy();
        }
    }
    return *this;
}

CCustomStimulus::~CCustomStimulus() {
    Destroy();
}

void CCustomStimulus::Destroy() noexcept {
    cursor_.reset();
    own_reader_ = nullptr;
    reader_.reset();
    given_handle_ = -1;
    signal_ = nullptr;
    container_ = {};
}

int CCustomStimulus::Create(const char* event_file, const char* signal) noexcept {
    Destroy();
    const bool named = corv::platform::Done([&] {
        file_name_ = event_file;
        signal_name_ = signal;
    });
    const bool open = named && Open();
    if (!open) {
        Destroy();
    }
    // Even if it could not be opened: the host may write the file later.
    corv::stimulus::RememberEventFile(event_file);
    return open ? 1 : 0;
}

int CCustomStimulus::CreateFrom(stremo::IEventsStreamRead* reader, int handle) noexcept {
    Destroy();
    reader_.reset(reader);
    signal_ = reader != nullptr && handle != -1
                  ? corv::stimulus::LoadRecordedScalar(*reader, handle, container_)
                  : nullptr;
    if (signal_ == nullptr) {
        Destroy();
        return 0;
    }
    given_handle_ = handle;
    Begin();
    return 1;
}

bool CCustomStimulus::Open() noexcept {
    reader_.reset(stremo::CreateStreamRead(file_name_));
    if (!reader_) {
        return false;
    }
    signal_ = corv::stimulus::FindRecordedSignal(*reader_, signal_name_, container_);
    if (signal_ == nullptr) {
        return false;
    }
    Begin();
    return true;
}

void CCustomStimulus::Begin() noexcept {
    ClearHandleMan(signal_);
    own_reader_ = corv::recording::OwnReader(reader_.get());
    if (own_reader_ != nullptr) {
        const int handle = signal_->GetHandle();
        own_reader_->SetInterest({&handle, 1});
    } else {
        reader_->Seek(&start_time_);
        reader_->MarkStart(&start_time_);
    }
}

// Returns the cursor, made at the first question. By then all elements of a vector have announced
// their interest, so reading the file once serves all of them.
corv::recording::SignalCursor* CCustomStimulus::Cursor() noexcept {
    if (cursor_ == nullptr) {
        cursor_ = own_reader_->OpenSignal(signal_->GetHandle());
    }
    return cursor_.get();
}

// Leaves only the signal's handle in the handle manager, so that events of other signals, loaded
// together with this one, are not recognised.
void CCustomStimulus::ClearHandleMan(ISignal* signal) noexcept {
    const ComPtr<IHandleManager> manager = ManagerOf(*container_);
    if (!manager) {
        return;
    }
    const int own = signal->GetHandle();
    const auto first_other = [&] {
        const int first = manager->GetFirstHandle();
        return first == own ? manager->GetNextHandle() : first;
    };
    for (int handle = first_other(); handle != -1; handle = first_other()) {
        manager->RemoveHandle(handle);
    }
}

// Sets the signals to the values that the recording has at its position. Returns whether any has
// one.
bool CCustomStimulus::QueryCache(IHandleManager* manager) noexcept {
    bool any = false;
    for (int handle = manager->GetFirstHandle(); handle != -1; handle = manager->GetNextHandle()) {
        ISignal* const signal = manager->GetFirstSignal(handle);
        if (signal == nullptr || signal->GetWave() == nullptr) {
            continue;
        }
        signal->GetWave()->Clear();
        ValueBuffer value{};
        if (reader_->GetCachedValue(handle, value.data())) {
            PutValue(*signal, value);
            any = true;
        }
    }
    return any;
}

// Reads the events up to and including a time. Seek stops before the events at the time itself,
// which are the ones that count.
bool CCustomStimulus::TakeEvents(IHandleManager* manager, std::int64_t time) noexcept {
    bool any = false;
    for (int handle = reader_->Next(); handle != -1 && *reader_->GetCurrentTime() <= time;
         handle = reader_->Next()) {
        ISignal* const signal = manager->GetFirstSignal(handle);
        ValueBuffer value{};
        if (signal != nullptr && reader_->ReadValue(value.data())) {
            PutValue(*signal, value);
            any = true;
        }
    }
    return any;
}

// Stores the value at a time in the signal's wave. Returns false if there is none.
bool CCustomStimulus::TakeValue(std::int64_t time) noexcept {
    if (own_reader_ != nullptr) {
        ValueBuffer value{};
        if (Cursor() == nullptr || !cursor_->Value(time, value.data())) {
            return false;
        }
        PutValue(*signal_, value);
        return true;
    }
    if (!reader_->Seek(&time)) {
        return false;
    }
    const ComPtr<IHandleManager> manager = ManagerOf(*container_);
    if (!manager) {
        return false;
    }
    const bool cached = QueryCache(manager.get());
    return TakeEvents(manager.get(), time) || cached;
}

int CCustomStimulus::GetValue(std::int64_t time, CString& value) noexcept {
    if (!reader_ || !TakeValue(time)) {
        return 0;
    }
    const char* const text = signal_->GetValueTextAt(0, FindAt);
    return corv::platform::Done([&] { value = text; }) && !value.IsEmpty() ? 1 : 0;
}

std::int64_t CCustomStimulus::GetNextEventTime(std::int64_t time) noexcept {
    if (!reader_ || time == std::numeric_limits<std::int64_t>::max()) {
        return -1;
    }
    if (own_reader_ != nullptr) {
        return Cursor() != nullptr ? cursor_->NextTime(time) : -1;
    }
    const std::int64_t target = time + 1;
    const ComPtr<IHandleManager> manager = ManagerOf(*container_);
    if (!reader_->Seek(&target) || !manager) {
        return -1;
    }
    int handle = 0;
    do {
        handle = reader_->Next();
    } while (handle != -1 &&
             (*reader_->GetCurrentTime() < target || manager->GetFirstSignal(handle) == nullptr));
    return handle == -1 ? -1 : *reader_->GetCurrentTime();
}

const char* CCustomStimulus::GetSignalTypeInfo() const noexcept {
    return signal_ != nullptr ? signal_->GetTypeInfo() : nullptr;
}
