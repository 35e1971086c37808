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

// A search for the number of items before a time, in a list in order of time. Even if the host has
// broken that order, the number for a later time is never below that for an earlier one, so ranges
// between two searches stay valid.
//
// Each step narrows the list to a quarter without a branch: the processor has nothing to
// mispredict, and the three items of a step are fetched at the same time.
template <class Item>
class ItemSearch {
public:
    ItemSearch() noexcept = default;
    ItemSearch(const Item* items, std::size_t count, std::int64_t time) noexcept
        : items_(items), base_(items), count_(count), time_(time) {}

    bool IsWide() const noexcept { return count_ >= 8; }
    // Does one step. The search must be wide.
    void Narrow() noexcept {
        const std::size_t quarter = count_ / 4;
        const std::size_t quarters = IsBefore(base_[quarter - 1]) +
                                     IsBefore(base_[2 * quarter - 1]) +
                                     IsBefore(base_[3 * quarter - 1]);
        // Without Opaque the compilers turn the product into branches again.
        base_ += quarter * platform::Opaque(quarters);
        count_ -= 3 * quarter;
    }
    // Returns the number, once the search is no longer wide.
    std::size_t Count() const noexcept {
        std::size_t rest = 0;
        for (std::size_t i = 0; i < count_; ++i) {
            rest += IsBefore(base_[i]);
        }
        return static_cast<std::size_t>(base_ - items_) + rest;
    }

private:
    std::size_t IsBefore(const Item& item) const noexcept {
        return static_cast<std::size_t>(TimeOf(item) < time_);
    }

    const Item* items_ = nullptr;
    const Item* base_ = nullptr;  // all items before this one are before the time
    std::size_t count_ = 0;       // of the items from there on that may be before it
    std::int64_t time_ = 0;
};

template <class Item>
std::size_t CountBefore(const Item* items, std::size_t count, std::int64_t time) noexcept {
    ItemSearch<Item> search(items, count, time);
    while (search.IsWide()) {
        search.Narrow();
    }
    return search.Count();
}

}  // namespace corv::waves
