#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/hints.h"

namespace corv::waves {

// What a search compares: an event by its time, or a time itself.
template <class Event>
std::int64_t TimeOf(const Event& event) noexcept {
    return event.Time();
}
inline std::int64_t TimeOf(std::int64_t time) noexcept {
    return time;
}

// The number of items before a time, in a list in order of time. Whatever the order is, the number
// for a later time is not below that for an earlier one.
//
// The list is cut down to a quarter at each step without a branch: there is nothing for the
// processor to guess wrong, and the three items of a step are fetched at the same time.
template <class Item>
std::size_t CountBefore(const Item* items, std::size_t count, std::int64_t time) noexcept {
    const auto before = [time](const Item& item) {
        return static_cast<std::size_t>(TimeOf(item) < time);
    };
    const Item* base = items;
    while (count >= 8) {
        const std::size_t quarter = count / 4;
        const std::size_t quarters = before(base[quarter - 1]) + before(base[2 * quarter - 1]) +
                                     before(base[3 * quarter - 1]);
        base += quarter * platform::Opaque(quarters);
        count -= 3 * quarter;
    }
    std::size_t rest = 0;
    for (std::size_t i = 0; i < count; ++i) {
        rest += before(base[i]);
    }
    return static_cast<std::size_t>(base - items) + rest;
}

}  // namespace corv::waves
