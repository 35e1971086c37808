#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/guard.h"
#include "platform/hints.h"
#include "waves/event_search.h"

namespace corv::waves {

// The times of every 32nd event of a long list, and every 32nd of these, for searches: they are
// close together, whereas the events themselves would have to be fetched from all over memory. The
// index is brought up to date when it is used and takes a quarter of a byte per event.
class TimeIndex {
public:
    // Lists of up to this many events stay in the processor's caches and are searched just as fast
    // without an index.
    static constexpr std::size_t kWorthwhile = 32'768;

    // Returns the number of events before a time. Without memory for the index this takes longer.
    template <class Event>
    std::size_t CountEventsBefore(const Event* events, std::size_t count,
                                  std::int64_t time) noexcept {
        if (!IsComplete(count) && !TakeTimes(events, count)) {
            return CountBefore(events, count, time);
        }
        const std::size_t coarse = CountBefore(coarse_.data(), coarse_.size(), time);
        const std::size_t fine = CountInGroup(fine_.data(), fine_.size(), coarse, time);
        return CountInGroup(events, count, fine, time);
    }

    // Says that the events from an index on have changed.
    void Forget(std::size_t first) noexcept {
        Shorten(fine_, Groups(first));
        Shorten(coarse_, Groups(fine_.size()));
    }

private:
    using Times = std::vector<std::int64_t>;

    static constexpr std::size_t kGroup = 32;
    static constexpr std::size_t Groups(std::size_t count) noexcept {
        return (count + kGroup - 1) / kGroup;
    }

    // Checks both lists, since memory may have run out between them.
    bool IsComplete(std::size_t count) const noexcept {
        return fine_.size() >= Groups(count) && coarse_.size() >= Groups(fine_.size());
    }

    // Returns the number of items before a time if `groups` groups of them begin before it: all
    // groups but the last are entirely before it, so only that one is searched.
    template <class Item>
    static std::size_t CountInGroup(const Item* items, std::size_t count, std::size_t groups,
                                    std::int64_t time) noexcept {
        if (groups == 0) {
            return 0;
        }
        const std::size_t start = (groups - 1) * kGroup;
        const std::size_t length = std::min(kGroup, count - start);
        for (std::size_t i = 0; i < length; i += 64 / sizeof(Item)) {
            platform::Prefetch(items + start + i);  // the whole group at once
        }
        return start + CountBefore(items + start, length, time);
    }

    // Adds the times of the groups that are not yet in the list.
    template <class Item>
    static void Extend(Times& times, const Item* items, std::size_t count) {
        const std::size_t groups = Groups(count);
        if (groups > times.capacity()) {
            times.reserve(std::max(groups, times.size() + times.size() / 2));
        }
        while (times.size() < groups) {
            times.push_back(TimeOf(items[times.size() * kGroup]));
        }
    }
    template <class Event>
    bool TakeTimes(const Event* events, std::size_t count) noexcept {
        return platform::Done([&] {
            Extend(fine_, events, count);
            Extend(coarse_, fine_.data(), fine_.size());
        });
    }

    static void Shorten(Times& times, std::size_t count) noexcept {
        times.resize(std::min(times.size(), count));
        if (times.size() < times.capacity() / 4) {
            platform::Done([&] { times.shrink_to_fit(); });
        }
    }

    Times fine_;
    Times coarse_;
};

}  // namespace corv::waves
