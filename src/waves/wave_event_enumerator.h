#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "corv/frame/interface_ids.h"
#include "corv/waves/wave_event_enumerator.h"
#include "frame/com_object.h"
#include "platform/hints.h"
#include "waves/timeline.h"
#include "waves/wave_event.h"

namespace corv::waves {

// The position of an enumerator. It is an index, so that it stays meaningful after any change of
// the events; an index past the last event means the end.
template <class Value>
struct WavePlace {
    Timeline<WaveEvent<Value>>& events_;
    std::size_t position_ = 0;
};

// Walks the events of a wave.
template <class Value>
class WaveEventEnumerator final
    : public frame::ComObject<WaveEventEnumerator<Value>, IWaveEventEnumerator,
                              IID_IWaveEventEnumerator, WavePlace<Value>> {
    using Base = frame::ComObject<WaveEventEnumerator<Value>, IWaveEventEnumerator,
                                  IID_IWaveEventEnumerator, WavePlace<Value>>;
    using Base::events_;
    using Base::position_;

public:
    // Starts on the first event of a wave, which must outlive the enumerator.
    explicit WaveEventEnumerator(Timeline<WaveEvent<Value>>& events) noexcept : Base({events}) {}

    HRESULT CORV_CALL Current(IWaveEvent** event) noexcept override {
        events_.Trim();
        const std::size_t at = Position();
        if (at == events_.size()) {
            return E_FAIL;
        }
        *event = &events_[at];
        return S_OK;
    }

    HRESULT CORV_CALL Next(std::uint32_t count, IWaveEvent** events,
                           std::uint32_t* delivered) noexcept override {
        events_.Trim();
        const std::size_t from = Position();
        const std::size_t taken = std::min<std::size_t>(count, events_.size() - from);
        for (std::size_t i = 0; i < taken; ++i) {
            events[i] = &events_[from + i];
        }
        position_ = from + taken;
        if (delivered != nullptr) {
            *delivered = static_cast<std::uint32_t>(taken);
        }
        return taken > 0 ? S_OK : S_FALSE;
    }

    HRESULT CORV_CALL Reset() noexcept override {
        position_ = 0;
        return S_OK;
    }

    int CORV_CALL IsNotFirst() noexcept override { return Position() != 0 ? 1 : 0; }
    int CORV_CALL IsNotLast() noexcept override { return Position() + 1 != events_.size() ? 1 : 0; }
    int CORV_CALL HasEvents() noexcept override { return events_.empty() ? 0 : 1; }

    std::int64_t CORV_CALL CurrentTime() noexcept override {
        const std::size_t at = Position();
        return at < events_.size() ? events_[at].Time() : -1;
    }

    HRESULT CORV_CALL Seek(std::int64_t time, std::uint32_t mode) noexcept override {
        const std::size_t found = events_.Find(time, mode);
        if (found >= events_.size()) {
            return E_FAIL;
        }
        position_ = found;
        return S_OK;
    }

    // Next for one event combined with CurrentTime, inline, for the library itself: delivers the
    // event unless at the end and returns the time of the following one, -1 if there is none. The
    // events of later steps are prefetched, since a bus walks many waves in turn.
    std::int64_t Take(IWaveEvent** event) noexcept {
        events_.Trim();
        const std::size_t size = events_.size();
        if (position_ < size) [[likely]] {
            *event = &events_[position_++];
        }
        if (position_ >= size) [[unlikely]] {
            position_ = size;
            return -1;
        }
        platform::Prefetch(&events_[std::min(position_ + 2, size - 1)]);
        return events_[position_].Time();
    }

private:
    std::size_t Position() const noexcept { return std::min(position_, events_.size()); }
};

}  // namespace corv::waves

using CWaveEventEnumerator32 = corv::waves::WaveEventEnumerator<std::uint32_t>;
using CWaveEventEnumerator64 = corv::waves::WaveEventEnumerator<std::uint64_t>;
