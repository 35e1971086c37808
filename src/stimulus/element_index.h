#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "corv/stimulus/simple_stimulus.h"

namespace corv::stimulus {

// The elements of a stimulus in the order of their times, absolute and relative ones separately,
// since relative ones repeat. Of elements at equal times only the first in formula order is kept:
// it is the one that counts.
class ElementIndex {
public:
    explicit ElementIndex(std::span<const std::unique_ptr<CSimpleStimulus>> elements);

    // Return the element with the smallest time at or after `time`, and the one with the largest
    // time at or before it, or null.
    const CSimpleStimulus* Next(std::int64_t time, bool absolute) const noexcept {
        return lists_[absolute ? 1 : 0].Next(time);
    }
    const CSimpleStimulus* Prev(std::int64_t time, bool absolute) const noexcept {
        return lists_[absolute ? 1 : 0].Prev(time);
    }

private:
    struct List {
        void Build(std::span<const std::unique_ptr<CSimpleStimulus>> elements, bool absolute);
        const CSimpleStimulus* Next(std::int64_t time) const noexcept {
            const std::size_t count = CountUpTo(time);
            if (count > 0 && times[count - 1] == time) {
                return elements[count - 1];
            }
            return count < elements.size() ? elements[count] : nullptr;
        }
        const CSimpleStimulus* Prev(std::int64_t time) const noexcept {
            const std::size_t count = CountUpTo(time);
            return count > 0 ? elements[count - 1] : nullptr;
        }
        // Returns the number of times at or before `time`. A walk asks for the place of the last
        // question or its neighbour, so these are tried first; only a jump needs the bisection.
        std::size_t CountUpTo(std::int64_t time) const noexcept {
            if (IsCount(cursor, time)) {
                return cursor;
            }
            if (cursor < times.size() && IsCount(cursor + 1, time)) {
                return ++cursor;
            }
            return Bisect(time);
        }
        bool IsCount(std::size_t count, std::int64_t time) const noexcept {
            return (count == 0 || times[count - 1] <= time) &&
                   (count == times.size() || times[count] > time);
        }
        std::size_t Bisect(std::int64_t time) const noexcept;

        std::vector<std::int64_t> times;  // rising, without duplicates
        std::vector<const CSimpleStimulus*> elements;
        // where the last question ended
        mutable std::size_t cursor = 0;
    };

    List lists_[2];  // relative, absolute
};

}  // namespace corv::stimulus
