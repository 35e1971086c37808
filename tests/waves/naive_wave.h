#pragma once

#include "corv/frame/com_ptr.h"
#include "corv/waves/signal_wave.h"
#include "tests/support/test.h"

namespace corv::test {

using WavePtr = frame::ComPtr<ISignalWave>;
using EnumeratorPtr = frame::ComPtr<IWaveEventEnumerator>;

inline WavePtr NewWave(std::uint32_t size = 4) {
    WavePtr wave;
    EXPECT_EQ(CreateSignalWave(size, wave.Out()), S_OK);
    return wave;
}
inline EnumeratorPtr NewEnumerator(ISignalWave& wave) {
    EnumeratorPtr events;
    EXPECT_EQ(wave.CreateEnumerator(events.Out()), S_OK);
    return events;
}

// A wave as plainly as it can be written: a list that is searched from the front. Values are held
// in 8 bytes, the rest of a 4-byte one is zero.
class NaiveWave {
public:
    struct Event {
        std::int64_t time;
        std::uint64_t value;
        std::uint8_t flags;
    };

    explicit NaiveWave(std::size_t value_size) : value_size_(value_size) {}

    void Add(std::int64_t time, std::uint32_t stamp, const void* value, std::size_t size,
             bool marked) {
        if (events_.empty() || events_.back().time != time) {
            events_.push_back(
                {time, Taken(value, size).value_or(0), marked ? std::uint8_t{1} : std::uint8_t{0}});
        } else if (!marked && stamp < stamp_) {
            return;
        } else {
            Event& last = events_.back();
            last.value = Taken(value, size).value_or(last.value);
            last.flags = marked && last.flags % 2 == 0 ? 3 : last.flags;
        }
        stamp_ = stamp;
    }
    void AddPending(std::int64_t time, const void* value, std::size_t size) {
        pending_.push_back({time, Taken(value, size).value_or(0), 0});
    }
    void Commit() {
        events_.insert(events_.begin(), pending_.rbegin(), pending_.rend());
        pending_.clear();
    }
    void ClearPending() { pending_.clear(); }
    void Clear() {
        events_.clear();
        stamp_ = 0;
    }

    // The index of the event that a mode chooses.
    std::optional<std::size_t> Find(std::int64_t time, std::uint32_t mode) const {
        std::optional<std::size_t> at;
        std::optional<std::size_t> before;
        std::optional<std::size_t> after;
        for (std::size_t i = events_.size(); i-- > 0;) {
            at = events_[i].time == time ? i : at;
            after = events_[i].time > time ? i : after;
        }
        for (std::size_t i = 0; i < events_.size(); ++i) {
            before = events_[i].time < time ? i : before;
        }
        const std::optional<std::size_t> chosen[] = {at, before, after, at ? at : before,
                                                     at ? at : after};
        return mode < 5 ? chosen[mode] : std::nullopt;
    }

    bool Remove(std::int64_t time) {
        const auto found = Find(time, 0);
        if (found) {
            events_.erase(events_.begin() + static_cast<std::ptrdiff_t>(*found));
        }
        return found.has_value();
    }
    bool Remove(std::int64_t from, std::int64_t to) {
        if (from != -1 && to != -1 && to < from) {
            std::swap(from, to);
        }
        const bool any = std::any_of(events_.begin(), events_.end(), [&](const Event& event) {
            return from == -1 || event.time >= from;
        });
        std::erase_if(events_, [&](const Event& event) {
            return (from == -1 || event.time >= from) && (to == -1 || event.time <= to);
        });
        return any;
    }

    const std::vector<Event>& Events() const { return events_; }
    std::size_t PendingCount() const { return pending_.size(); }

private:
    std::optional<std::uint64_t> Taken(const void* value, std::size_t size) const {
        std::uint64_t bytes = 0;
        if (value == nullptr || size < value_size_) {
            return std::nullopt;
        }
        std::memcpy(&bytes, value, value_size_);
        return bytes;
    }

    std::size_t value_size_;
    std::vector<Event> events_;
    std::vector<Event> pending_;
    std::uint32_t stamp_ = 0;
};

}  // namespace corv::test
