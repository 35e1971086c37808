#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <utility>

#include "corv/frame/interface_ids.h"
#include "corv/waves/signal_wave.h"
#include "frame/com_object.h"
#include "waves/timeline.h"
#include "waves/wave_event.h"
#include "waves/wave_event_enumerator.h"

namespace corv::waves {

// The wave of a scalar whose value is stored as a `Value`, 4 or 8 bytes.
template <class Value>
class SignalWave final : public frame::ComObject<SignalWave<Value>, ISignalWave, IID_ISignalWave> {
public:
    SignalWave() noexcept = default;
    ~SignalWave() { events_.Retire(); }

    HRESULT CORV_CALL AddEvent(std::int64_t time, std::uint32_t stamp, const void* value,
                               std::uint32_t value_size) noexcept override {
        if (IsLast(time)) {
            if (stamp < last_stamp_) {
                return S_OK;
            }
            events_.back().Assign(value, value_size);
        } else if (events_.full()) [[unlikely]] {
            return MakeRoomAndAdd(time, stamp, value, value_size);
        } else {
            events_.Append(time, UsableOrZero<Value>(value, value_size), kPlain);
        }
        last_stamp_ = stamp;
        return S_OK;
    }

    HRESULT CORV_CALL AddMarkedEvent(std::int64_t time, std::uint32_t stamp, const void* value,
                                     std::uint32_t value_size) noexcept override {
        if (IsLast(time)) {
            Event& last = events_.back();
            last.Assign(value, value_size);
            if ((last.Flags() & kMarked) == 0) {
                last.SetFlags(kMarked | kOverwritten);
            }
        } else if (events_.full() && !events_.MakeRoom()) {
            return E_OUTOFMEMORY;
        } else {
            events_.Append(time, UsableOrZero<Value>(value, value_size), kMarked);
        }
        last_stamp_ = stamp;
        return S_OK;
    }

    HRESULT CORV_CALL InsertEvent(std::int64_t, const void*, std::uint32_t) noexcept override {
        return E_NOTIMPL;
    }

    HRESULT CORV_CALL AddPendingEvent(std::int64_t time, const void* value,
                                      std::uint32_t value_size) noexcept override {
        if (pending_ == nullptr) {
            pending_.reset(new (std::nothrow) PendingEvents);
        }
        if (pending_ == nullptr || (pending_->full() && !pending_->MakeRoom())) {
            return E_OUTOFMEMORY;
        }
        pending_->Append(time, UsableOrZero<Value>(value, value_size), kPlain);
        return S_OK;
    }

    HRESULT CORV_CALL CommitPendingEvents() noexcept override {
        if (pending_ != nullptr && !events_.Prepend(*pending_)) {
            return E_OUTOFMEMORY;
        }
        return ClearPendingEvents();
    }

    HRESULT CORV_CALL ClearPendingEvents() noexcept override {
        pending_ = nullptr;
        return S_OK;
    }

    HRESULT CORV_CALL Clear() noexcept override {
        events_.Clear();
        last_stamp_ = 0;
        return S_OK;
    }

    HRESULT CORV_CALL CreateEnumerator(IWaveEventEnumerator** enumerator) noexcept override {
        return frame::CreateComObject<WaveEventEnumerator<Value>>(enumerator, events_);
    }

    HRESULT CORV_CALL FindEvent(std::int64_t time, std::uint32_t mode,
                                IWaveEvent** event) noexcept override {
        events_.Trim();
        const std::size_t found = events_.Find(time, mode);
        if (found >= events_.size()) {
            return E_FAIL;
        }
        *event = &events_[found];
        return S_OK;
    }

    HRESULT CORV_CALL RemoveEvent(std::int64_t time) noexcept override {
        const std::size_t found = events_.Find(time, FindAt);
        if (found >= events_.size()) {
            return E_FAIL;
        }
        events_.Erase(found, found + 1);
        return S_OK;
    }

    HRESULT CORV_CALL RemoveEvents(std::int64_t from, std::int64_t to) noexcept override;

    std::uint32_t CORV_CALL GetEventCount() noexcept override {
        return static_cast<std::uint32_t>(events_.size());
    }
    std::uint32_t CORV_CALL GetValueSize() noexcept override { return sizeof(Value); }
    std::int64_t CORV_CALL GetFirstTime() noexcept override {
        return events_.empty() ? kNoTime : events_[0].Time();
    }
    std::int64_t CORV_CALL GetLastTime() noexcept override {
        return events_.empty() ? kNoTime : events_.back().Time();
    }

    HRESULT CORV_CALL GetEventValue(std::uint32_t index, void* buffer,
                                    std::uint32_t buffer_size) noexcept override {
        if (index >= events_.size() || buffer_size < sizeof(Value)) {
            return E_INVALIDARG;
        }
        return events_[index].GetValue(buffer, buffer_size) > 0 ? S_OK : E_FAIL;
    }

    // The events, for use within the library.
    Timeline<WaveEvent<Value>>& List() noexcept { return events_; }

private:
    using Event = WaveEvent<Value>;
    using Events = Timeline<Event>;
    using PendingEvents = EventList<Event>;

    static constexpr std::int64_t kNoTime = -1;
    static constexpr std::uint8_t kPlain = 0;
    static constexpr std::uint8_t kMarked = 1;
    static constexpr std::uint8_t kOverwritten = 2;

    // A separate function, so that adding an event without it need not save registers.
    [[gnu::noinline]] HRESULT MakeRoomAndAdd(std::int64_t time, std::uint32_t stamp,
                                             const void* value, std::uint32_t value_size) noexcept {
        return events_.MakeRoom() ? AddEvent(time, stamp, value, value_size) : E_OUTOFMEMORY;
    }

    bool IsLast(std::int64_t time) noexcept {
        return !events_.empty() && events_.back().Time() == time;
    }

    // A design has a wave for each bit, and most are short, so whatever only few waves need is
    // allocated separately.
    Events events_;                           // in non-falling order of time
    std::unique_ptr<PendingEvents> pending_;  // in falling order of time, older than all events_
    std::uint32_t last_stamp_ = 0;
};

template <class Value>
HRESULT CORV_CALL SignalWave<Value>::RemoveEvents(std::int64_t from, std::int64_t to) noexcept {
    if (from != kNoTime && to != kNoTime && to < from) {
        std::swap(from, to);
    }
    const std::size_t start = from == kNoTime ? 0 : events_.CountBefore(from);
    if (start == events_.size()) {
        return E_FAIL;
    }
    const std::size_t stop = to == kNoTime ? events_.size() : events_.CountUpTo(to);
    if (start < stop) {
        events_.Erase(start, stop);
    }
    return S_OK;
}

}  // namespace corv::waves

using CSignalWave32 = corv::waves::SignalWave<std::uint32_t>;
using CSignalWave64 = corv::waves::SignalWave<std::uint64_t>;

static_assert(sizeof(CSignalWave32) <= 10 * sizeof(void*));
