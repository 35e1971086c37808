#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/hints.h"

namespace corv::waves {

// What a search compares: the time of an event, or a time itself.
template <class Event>
std::int64_t TimeOf(const Event& event) noexcept {
    return event.Time();
}
inline std::int64_t TimeOf(std::int64_t time) noexcept {
    return time;
}

// Returns the number of items before a time, in a list in order of time. Even if the host has
// broken that order, the number for a later time is never below that for an earlier one, so ranges
// between two searches stay valid.
//
// Each step narrows the list to a quarter without a branch: the processor has nothing to
// mispredict, and the three items of a step are fetched at the same time.
template <class Item>
std::size_t CountBefore(const Item* items, std::size_t count, std::int64_t time) noexcept {
    const auto is_before = [time](const Item& item) {
        return static_cast<std::size_t>(TimeOf(item) < time);
    };
    const Item* base = items;  // all items before this one are before the time
    while (count >= 8) {
        const std::size_t quarter = count / 4;
        const std::size_t quarters = is_before(base[quarter - 1]) +
                                     is_before(base[2 * quarter - 1]) +
                                     is_before(base[3 * quarter - 1]);
        // Without Opaque the compilers turn the product into branches again.
        base += quarter * platform::Opaque(quarters);
        count -= 3 * quarter;
    }
    std::size_t rest = 0;
    for (std::size_t i = 0; i < count; ++i) {
        rest += is_before(base[i]);
    }
    return static_cast<std::size_t>(base - items) + rest;
}

}  // namespace corv::waves
