#pragma once

#include <algorithm>
#include <cstdint>

#include "host/trace.h"

namespace corv::host {

// A window divided into columns of equal width, in whole-number arithmetic: time t lies in column
// floor((t - start) * columns / span). A column narrower than a picosecond may hold no time.
class TimeGrid {
public:
    // The window is not empty, `columns` is from 1 to 10,000,000.
    TimeGrid(TimeWindow window, std::int64_t columns) noexcept
        : window_(window), columns_(columns), each_(Span() / columns), rest_(Span() % columns) {}

    TimeWindow Window() const noexcept { return window_; }
    std::int64_t Columns() const noexcept { return columns_; }
    std::int64_t Span() const noexcept { return window_.end - window_.start; }

    // The first time at or right of a column's left border; for column `Columns()` the window's
    // end.
    std::int64_t First(std::int64_t column) const noexcept {
        return window_.start + column * each_ + (column * rest_ + columns_ - 1) / columns_;
    }

    // The column of a time; times outside go to column 0 and to `Columns()`.
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
