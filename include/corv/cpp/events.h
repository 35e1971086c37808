#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <optional>
#include <ranges>
#include <string>
#include <utility>

namespace corv {

// A time after all others.
inline constexpr std::int64_t kEndOfTime = std::numeric_limits<std::int64_t>::max();

// A value change: its time in picoseconds and the value as text.
struct Event {
    std::int64_t time = 0;
    std::string value;

    bool operator==(const Event&) const = default;
};

// The events of a source from one time to another, both included, in order: a view for range-based
// for loops and std::ranges, which makes its elements on demand. A source is cheap to copy and has
// two const operations:
//
//     std::optional<std::int64_t> Next(std::int64_t time);   // the time of the next event after it
//     Value At(std::int64_t time);                           // the event at that time
//
// The object that the events belong to must outlive the view and not change; the view must outlive
// its iterators.
template <class Source>
class EventView : public std::ranges::view_base {
public:
    class Iterator {
    public:
        using value_type = decltype(std::declval<const Source&>().At(0));
        using difference_type = std::ptrdiff_t;
        using iterator_concept = std::forward_iterator_tag;
        using iterator_category = std::input_iterator_tag;  // elements are values

        Iterator() = default;
        Iterator(const Source& source, std::int64_t before, std::int64_t to)
            : source_(&source), to_(to) {
            MoveAfter(before);
        }

        value_type operator*() const { return source_->At(*time_); }
        Iterator& operator++() {
            MoveAfter(*time_);
            return *this;
        }
        Iterator operator++(int) {
            Iterator before = *this;
            ++*this;
            return before;
        }

        bool operator==(const Iterator& other) const { return time_ == other.time_; }

    private:
        void MoveAfter(std::int64_t time) {
            time_ = source_->Next(time);
            if (time_ && *time_ > to_) {
                time_.reset();
            }
        }

        const Source* source_ = nullptr;
        std::int64_t to_ = 0;
        std::optional<std::int64_t> time_;  // nullopt at the end
    };

    EventView() = default;
    EventView(Source source, std::int64_t from, std::int64_t to)
        : source_(std::move(source)), from_(from), to_(to) {}

    // Next looks after a time, and times begin at 0.
    Iterator begin() const { return {source_, from_ > 0 ? from_ - 1 : -1, to_}; }
    Iterator end() const { return {}; }

private:
    Source source_;
    std::int64_t from_ = 0;
    std::int64_t to_ = -1;
};

}  // namespace corv
