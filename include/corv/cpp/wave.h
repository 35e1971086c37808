#pragma once

#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>

#include "corv/cpp/error.h"
#include "corv/cpp/events.h"
#include "corv/waves/signal_wave.h"

namespace corv {

// An event of a wave, with its 4 or 8 stored bytes as a number and the flags of IWaveEvent.
struct WaveEvent {
    std::int64_t time = 0;
    std::uint64_t value = 0;
    std::uint8_t flags = 0;

    bool operator==(const WaveEvent&) const = default;
};

// The events of a scalar signal as stored values. Copies refer to the same wave. Times are
// picoseconds.
class Wave {
    struct Source {
        std::optional<std::int64_t> Next(std::int64_t time) const {
            const auto event = Find(*wave, time, FindAfter);
            return event ? std::optional(event->time) : std::nullopt;
        }
        WaveEvent At(std::int64_t time) const { return *Find(*wave, time, FindAtOrBefore); }
        ISignalWave* wave = nullptr;
    };

public:
    // An empty wave of values of 4 or 8 bytes. Throws Error for another size.
    explicit Wave(std::uint32_t value_size) {
        if (value_size != 4 && value_size != 8) {
            throw Error("a value of a wave has 4 or 8 bytes");
        }
        ISignalWave* wave = nullptr;
        cpp::Check(CreateSignalWave(value_size, &wave), "the wave cannot be made");
        wave_ = {wave, [](ISignalWave* made) { made->Release(); }};
    }
    // Refers to a wave that lives as long as `owner`.
    template <class Owner>
    Wave(const std::shared_ptr<Owner>& owner, ISignalWave& wave) : wave_(owner, &wave) {}

    std::uint32_t Count() const { return wave_->GetEventCount(); }
    std::uint32_t ValueSize() const { return wave_->GetValueSize(); }

    // Appends an event; at the time of the last event it replaces that one's value. Throws Error
    // for a negative time and one before the last event.
    void Add(std::int64_t time, std::uint64_t value) {
        if (time < 0 || time < wave_->GetLastTime()) {
            throw Error("events must be added in order of time");
        }
        cpp::Check(wave_->AddEvent(time, 0, &value, sizeof value), "the event cannot be added");
    }

    // The event that the search mode selects, nullopt if there is none.
    std::optional<WaveEvent> Find(std::int64_t time, EFindMode mode = FindAtOrBefore) const {
        return Find(*wave_, time, mode);
    }

    // The events from one time to another, both included.
    EventView<Source> Events(std::int64_t from = 0, std::int64_t to = kEndOfTime) const {
        return {Source{wave_.get()}, from, to};
    }

    void Clear() { wave_->Clear(); }

    // The object below, for the C-style operations.
    ISignalWave& Get() const noexcept { return *wave_; }

private:
    static std::optional<WaveEvent> Find(ISignalWave& wave, std::int64_t time, EFindMode mode) {
        IWaveEvent* event = nullptr;
        if (FAILED(wave.FindEvent(time, mode, &event))) {
            return std::nullopt;
        }
        WaveEvent found{event->GetTime(), 0, event->GetFlags()};
        event->GetValue(&found.value, sizeof found.value);
        return found;
    }

    std::shared_ptr<ISignalWave> wave_;
};

}  // namespace corv
