#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "waves/event_search.h"
#include "waves/time_index.h"
#include "waves/timeline.h"

namespace corv::waves {

inline constexpr std::size_t kMostTogether = 8;

// Timeline::Find for up to kMostTogether lists. The searches take turns, so that while one waits
// for an event from memory the others go on. Lists with an index are searched through it, one after
// the other.
template <class Event>
void FindTogether(Timeline<Event>* const* lists, std::size_t count, std::int64_t time,
                  std::uint32_t mode, std::size_t* found) noexcept {
    const bool is_last = mode == FindAfter && time == std::numeric_limits<std::int64_t>::max();
    const std::int64_t counted = mode == FindAfter && !is_last ? time + 1 : time;
    const auto has_index = [&](std::size_t i) { return lists[i]->size() > TimeIndex::kWorthwhile; };
    std::array<ItemSearch<Event>, kMostTogether> searches;
    for (std::size_t i = 0; i < count; ++i) {
        searches[i] = {lists[i]->begin(), has_index(i) ? 0 : lists[i]->size(), counted};
    }
    for (bool wide = true; wide;) {
        wide = false;
        for (std::size_t i = 0; i < count; ++i) {
            if (searches[i].IsWide()) {
                searches[i].Narrow();
                wide = true;
            }
        }
    }
    for (std::size_t i = 0; i < count; ++i) {
        Timeline<Event>& list = *lists[i];
        const std::size_t before = is_last        ? list.size()
                                   : has_index(i) ? list.CountBefore(counted)
                                                  : searches[i].Count();
        found[i] = list.Chosen(before, time, mode);
    }
}

}  // namespace corv::waves
