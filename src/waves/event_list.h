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

// A contiguous list of events that grows at its end. A short list is in a block of the heap that
// doubles when it is full. From Range::kWorthwhile bytes on, the list is in a range of addresses
// and grows in place, so that long lists are not copied and take only the pages that they fill. If
// no range is available, the list stays in the heap.
//
// Spare room is released by Trim, which the wave calls before it returns events: the list has then
// stopped growing, or at least paused. The first block after a Trim has a sixteenth of spare room,
// enough for callers that add and ask in turn not to have the list copied each time; if that fills
// up without another Trim, the next block doubles again.
//
// Events are copied one by one, since the standard does not allow objects with virtual operations
// to be moved as bytes. A copy compiles to the two stores that a block move would make, and
// destruction to nothing, so this is just as fast.
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

    // Returns whether there is no room for the next Append.
    bool full() const noexcept { return end_ == limit_; }

    // Makes room for one more event. Returns false and leaves the list unchanged if out of memory;
    // so does Prepend.
    bool MakeRoom() noexcept { return GrowInPlace(1) || MoveToLarger(1, 0); }

    // Adds an event made from the arguments. There must be room for it.
    template <class... Args>
    void Append(Args... args) noexcept {
        ::new (static_cast<void*>(end_)) Event(args...);
        ++end_;
    }

    // Inserts the events of another list at the front, its last one first. Each event is copied
    // once.
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

    // Removes the events from one place to another and moves the later ones up.
    void Erase(Event* first, Event* last) noexcept {
        end_ = std::move(last, end_, first);
        trimmed_ = false;
    }

    // Removes all events. Their room is kept for the next ones, until the next Trim.
    void Clear() noexcept {
        end_ = begin_;
        trimmed_ = false;
    }

    // Releases spare room. Events may move, unless nothing was added or removed since the last
    // Trim.
    void Trim() noexcept {
        if (!trimmed_) [[unlikely]] {
            GiveBackRoom();
            trimmed_ = true;
        }
    }

    // To be called when the list's owner ends: leaves the memory of a long list to the next one.
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

    // A few spare events are not worth a release. A range is extended by at least half of what
    // makes it worthwhile (64 KiB), since each extension is a system call. A list that has outgrown
    // its first range receives sixteen times its size in addresses: these cost nothing until
    // touched, and the list then moves at most a handful of times up to any size.
    static constexpr std::size_t kSpareEvents = 4;
    static constexpr std::size_t kStep = Range::kWorthwhile / 2;
    static constexpr std::size_t kSpread = 16;

    // Returns an empty list with room for that many events, at least one; without room if out of
    // memory.
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
    std::unique_ptr<Range> range_;  // where the list is; null if it is in the heap
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

// Places the empty list in a range with that many usable bytes, if there is one.
template <class Event, class Range>
bool EventList<Event, Range>::TakeRange(std::size_t bytes) noexcept {
    // The first range has only twice the addresses, so that many lists that grow together are close
    // to each other: the processor then finds their pages faster. A list that outgrows it receives
    // kSpread times its size, so that it seldom moves.
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

// Extends the range, if the list is in one that has the addresses. By a sixteenth at least, so that
// the number of extensions stays logarithmic.
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

// Moves the list to a place with room for more events, leaving a gap before the first one. After a
// Trim the list grows by a sixteenth only, otherwise it doubles.
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
