#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <new>

#include "corv/waves/find_mode.h"
#include "waves/event_list.h"
#include "waves/time_index.h"

namespace corv::waves {

// The events of a wave: a list in order of time, with searches by time. A long list that is
// searched gets an index.
template <class Event>
class Timeline : private EventList<Event> {
public:
    using List = EventList<Event>;
    using List::Append;
    using List::back;
    using List::begin;
    using List::empty;
    using List::full;
    using List::MakeRoom;
    using List::Retire;
    using List::size;
    using List::Trim;

    Event& operator[](std::size_t index) noexcept { return List::begin()[index]; }

    // As in EventList, but with indices for the events.
    bool Prepend(const List& reversed) noexcept {
        Forget(0);
        return List::Prepend(reversed);
    }
    void Erase(std::size_t first, std::size_t last) noexcept {
        Forget(first);
        List::Erase(List::begin() + first, List::begin() + last);
    }
    void Clear() noexcept {
        Forget(0);
        List::Clear();
    }

    // Return the number of events before a time, and up to and including it.
    std::size_t CountBefore(std::int64_t time) noexcept {
        if (size() > TimeIndex::kWorthwhile && HasIndex()) {
            return index_->CountEventsBefore(List::begin(), size(), time);
        }
        return corv::waves::CountBefore(List::begin(), size(), time);
    }
    std::size_t CountUpTo(std::int64_t time) noexcept {
        return time == std::numeric_limits<std::int64_t>::max() ? size() : CountBefore(time + 1);
    }

    // Returns the index of the event that a search mode (EFindMode) selects; size() or a larger
    // number if there is none, or no such mode.
    std::size_t Find(std::int64_t time, std::uint32_t mode) noexcept {
        return Chosen(mode == FindAfter ? CountUpTo(time) : CountBefore(time), time, mode);
    }
    // The same if the number of events before the time is known (for FindAfter, up to and including
    // it). With no event before the time, FindBefore wraps around to a large number on purpose.
    std::size_t Chosen(std::size_t before, std::int64_t time, std::uint32_t mode) noexcept {
        const auto is_at = [&] { return before < size() && (*this)[before].Time() == time; };
        switch (mode) {
            case FindAt:
                return is_at() ? before : size();
            case FindBefore:
                return before - 1;
            case FindAtOrBefore:
                return is_at() ? before : before - 1;
            case FindAfter:
            case FindAtOrAfter:
                return before;
            default:
                return size();
        }
    }

private:
    bool HasIndex() noexcept {
        if (index_ == nullptr) [[unlikely]] {
            index_.reset(new (std::nothrow) TimeIndex);
        }
        return index_ != nullptr;
    }
    // Says that the events from an index on change.
    void Forget(std::size_t first) noexcept {
        if (index_ != nullptr) {
            index_->Forget(first);
        }
    }

    std::unique_ptr<TimeIndex> index_;
};

}  // namespace corv::waves
