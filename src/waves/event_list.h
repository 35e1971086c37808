#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

#include "platform/address_range.h"

namespace corv::waves {

// A contiguous list of events, grown at its end. A short list lies in a block of the heap that
// doubles when it is full; from Range::kWorthwhile bytes on it lies in a range of addresses and
// grows where it is, so that long lists are not copied and take the pages that they fill. Where
// there is no such range the heap serves on.
//
// Spare room is given back by Trim, which the wave calls before it hands out events: the list has
// then stopped growing, or at least paused. The block that is needed after a Trim is larger by a
// sixteenth only, so that a caller who adds and asks in turn does not have the list copied each
// time; should it fill up without a question, the next one doubles again.
//
// Events are copied one by one, since the standard lets no object with virtual operations be moved
// as bytes. Their copies are the two stores that a block move would make, and their destruction is
// nothing, so it is as fast.
template <class Event, class Range = platform::AddressRange>
class EventList {
    static_assert(std::is_trivially_destructible_v<Event>);

public:
    // Indices and counts are 32-bit numbers for the host.
    static constexpr std::size_t kMostEvents = std::min<std::size_t>(
        std::numeric_limits<std::uint32_t>::max(), PTRDIFF_MAX / sizeof(Event));

    EventList() noexcept = default;
    EventList(EventList&& other) noexcept
        : begin_(std::exchange(other.begin_, nullptr)),
          end_(std::exchange(other.end_, nullptr)),
          limit_(std::exchange(other.limit_, nullptr)),
          range_(std::move(other.range_)),
          trimmed_(std::exchange(other.trimmed_, false)) {}
    EventList& operator=(EventList&& other) noexcept {
        EventList(std::move(other)).Swap(*this);
        return *this;
    }
    ~EventList() {
        if (range_ == nullptr) {
            ::operator delete(begin_);
        }
    }

    bool empty() const noexcept { return begin_ == end_; }
    std::size_t size() const noexcept { return static_cast<std::size_t>(end_ - begin_); }
    std::size_t capacity() const noexcept { return static_cast<std::size_t>(limit_ - begin_); }
    Event* begin() noexcept { return begin_; }
    Event* end() noexcept { return end_; }
    const Event* begin() const noexcept { return begin_; }
    const Event* end() const noexcept { return end_; }
    Event& back() noexcept { return end_[-1]; }

    // Whether the next Append has no room.
    bool full() const noexcept { return end_ == limit_; }

    // Makes room for an event more. False, with the list as it was, when memory runs out; so for
    // Prepend.
    bool MakeRoom() noexcept { return GrowInPlace(1) || MoveToLarger(1, 0); }

    // Adds an event made from the arguments; there must be room for it.
    template <class... Args>
    void Append(Args... args) noexcept {
        ::new (static_cast<void*>(end_)) Event(args...);
        ++end_;
    }

    // Puts the events of another list in front, its last one first. Each event is copied once.
    bool Prepend(const EventList& reversed) noexcept {
        const std::size_t count = reversed.size();
        if (count == 0) {
            return true;
        }
        if (capacity() - size() >= count || GrowInPlace(count)) {
            ShiftBack(count);
        } else if (!MoveToLarger(count, count)) {
            return false;
        }
        std::uninitialized_copy(std::make_reverse_iterator(reversed.end()),
                                std::make_reverse_iterator(reversed.begin()), begin_);
        return true;
    }

    // Removes the events from one place to another; the later ones close up.
    void Erase(Event* first, Event* last) noexcept {
        end_ = std::move(last, end_, first);
        trimmed_ = false;
    }

    // Removes all events. Their room stays for the next ones, until the next Trim.
    void Clear() noexcept {
        end_ = begin_;
        trimmed_ = false;
    }

    // Gives spare room back. Events may move, unless nothing was added or removed since the last
    // Trim.
    void Trim() noexcept {
        if (!trimmed_) [[unlikely]] {
            GiveBackRoom();
            trimmed_ = true;
        }
    }

    // For the end of the list's owner: leaves the memory of a long list to the next one.
    void Retire() noexcept {
        if (range_ != nullptr) {
            begin_ = end_ = limit_ = nullptr;
            Range::Keep(std::move(*range_));
            range_ = nullptr;
        }
    }

private:
    void Swap(EventList& other) noexcept {
        std::swap(begin_, other.begin_);
        std::swap(end_, other.end_);
        std::swap(limit_, other.limit_);
        std::swap(range_, other.range_);
        std::swap(trimmed_, other.trimmed_);
    }

    // Room that is not worth giving back; a range is extended by at least kStep bytes.
    static constexpr std::size_t kSpareEvents = 4;
    static constexpr std::size_t kStep = Range::kWorthwhile / 2;
    static constexpr std::size_t kSpread = 16;

    // An empty list with room for that many events, at least one; without room when memory runs
    // out.
    static EventList WithRoom(std::size_t count) noexcept;
    bool TakeRange(std::size_t bytes) noexcept;

    bool GrowInPlace(std::size_t more) noexcept;
    bool MoveToLarger(std::size_t more, std::size_t gap) noexcept;
    void MoveTo(EventList target, std::size_t gap) noexcept;
    void ShiftBack(std::size_t count) noexcept;
    void GiveBackRoom() noexcept;

    Event* begin_ = nullptr;
    Event* end_ = nullptr;
    Event* limit_ = nullptr;
    std::unique_ptr<Range> range_;  // where the list lies; none when it lies in the heap
    bool trimmed_ = false;          // since the last removal and the last move to a larger place
};

template <class Event, class Range>
EventList<Event, Range> EventList<Event, Range>::WithRoom(std::size_t count) noexcept {
    const std::size_t bytes = count * sizeof(Event);
    EventList list;
    if (bytes >= Range::kWorthwhile && list.TakeRange(bytes)) {
        return list;
    }
    if (void* const block = ::operator new(bytes, std::nothrow)) {
        list.begin_ = list.end_ = static_cast<Event*>(block);
        list.limit_ = list.begin_ + count;
    }
    return list;
}

// Puts the empty list into a range of so many usable bytes, if there is one.
template <class Event, class Range>
bool EventList<Event, Range>::TakeRange(std::size_t bytes) noexcept {
    // Twice the addresses at first, so that many lists that grow together lie close: the processor
    // finds their pages faster then. More for a list that outgrows them, so that it seldom moves.
    Range range = Range::Reserve(2 * bytes, bytes * (bytes < 4 * Range::kWorthwhile ? 2 : kSpread));
    if (!range || !range.Commit(bytes)) {
        return false;
    }
    range_.reset(new (std::nothrow) Range(std::move(range)));
    if (range_ == nullptr) {
        return false;
    }
    begin_ = end_ = static_cast<Event*>(range_->data());
    limit_ = begin_ + std::min(kMostEvents, range_->usable() / sizeof(Event));
    return true;
}

// Extends the range, when the list lies in one that has the addresses.
template <class Event, class Range>
bool EventList<Event, Range>::GrowInPlace(std::size_t more) noexcept {
    if (range_ == nullptr || more > kMostEvents - size()) {
        return false;
    }
    const std::size_t least = (size() + more) * sizeof(Event);
    const std::size_t wanted = std::min(least + std::max(least / 16, kStep), range_->reserved());
    if (least > wanted || !range_->Commit(wanted)) {
        return false;
    }
    limit_ = begin_ + std::min(kMostEvents, range_->usable() / sizeof(Event));
    return true;
}

// Moves the list to a place with room for more events, behind a gap in front of the first one.
template <class Event, class Range>
bool EventList<Event, Range>::MoveToLarger(std::size_t more, std::size_t gap) noexcept {
    if (more > kMostEvents - size()) {
        return false;
    }
    const std::size_t grown = size() + (trimmed_ ? size() / 16 : size()) + kSpareEvents;
    EventList target = WithRoom(std::clamp(grown, size() + more, kMostEvents));
    if (target.capacity() == 0) {
        return false;
    }
    MoveTo(std::move(target), gap);
    return true;
}

template <class Event, class Range>
void EventList<Event, Range>::MoveTo(EventList target, std::size_t gap) noexcept {
    target.end_ = std::uninitialized_copy(begin_, end_, target.begin_ + gap);
    Swap(target);
}

template <class Event, class Range>
void EventList<Event, Range>::ShiftBack(std::size_t count) noexcept {
    for (Event* from = end_; from != begin_;) {
        --from;
        ::new (static_cast<void*>(from + count)) Event(*from);
    }
    end_ += count;
}

template <class Event, class Range>
void EventList<Event, Range>::GiveBackRoom() noexcept {
    const std::size_t bytes = size() * sizeof(Event);
    if (capacity() - size() <= size() / 12 + kSpareEvents) {
        return;
    }
    if (empty()) {
        *this = EventList();
    } else if (range_ != nullptr && bytes >= Range::kWorthwhile / 4) {
        range_->Trim(bytes);
    } else if (EventList exact = WithRoom(size()); exact.capacity() != 0) {
        MoveTo(std::move(exact), 0);
    }
}

}  // namespace corv::waves
