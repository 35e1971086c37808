#pragma once

#include <algorithm>
#include <cstdint>

#include "host/trace.h"

namespace corv::host {

// A window divided into columns of equal width, in whole-number arithmetic: time t is in column
// floor((t - start) * columns / span). A column narrower than a picosecond may contain no time.
class TimeGrid {
public:
    // The window must not be empty; `columns` is from 1 to 10,000,000.
    TimeGrid(TimeWindow window, std::int64_t columns) noexcept
        : window_(window), columns_(columns), each_(Span() / columns), rest_(Span() % columns) {}

    TimeWindow Window() const noexcept { return window_; }
    std::int64_t Columns() const noexcept { return columns_; }
    std::int64_t Span() const noexcept { return window_.end - window_.start; }

    // Returns the first time at or after a column's left border; for column `Columns()` the
    // window's end. Splitting the span into quotient and remainder keeps the product within 64
    // bits.
    std::int64_t First(std::int64_t column) const noexcept {
        return window_.start + column * each_ + (column * rest_ + columns_ - 1) / columns_;
    }

    // Returns the column of a time; times outside are in column 0 or in `Columns()`. It is found by
    // bisection over First, so that both always agree.
    std::int64_t Column(std::int64_t time) const noexcept {
        if (time < window_.start || time >= window_.end) {
            return time < window_.start ? 0 : columns_;
        }
        std::int64_t low = 0;
        std::int64_t high = columns_;
        while (high - low > 1) {
            const std::int64_t middle = low + (high - low) / 2;
            (First(middle) <= time ? low : high) = middle;
        }
        return low;
    }

private:
    TimeWindow window_;
    std::int64_t columns_;
    std::int64_t each_;
    std::int64_t rest_;
};

}  // namespace corv::host
