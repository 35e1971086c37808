#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "corv/stimulus/simple_stimulus.h"

namespace corv::stimulus {

// The elements of a stimulus in the order of their times, absolute and relative ones apart. Of
// elements at equal times the first in formula order is kept: it is the one that answers.
class ElementIndex {
public:
    explicit ElementIndex(std::span<const std::unique_ptr<CSimpleStimulus>> elements);

    // The element with the smallest time at or after, the largest at or before `time`; or null.
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
        // The number of times at or before `time`.
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

        std::vector<std::int64_t> times;  // rising, no two alike
        std::vector<const CSimpleStimulus*> elements;
        // where the last question ended: a walk asks for a neighbour next
        mutable std::size_t cursor = 0;
    };

    List lists_[2];  // relative, absolute
};

}  // namespace corv::stimulus
