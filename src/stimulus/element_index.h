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
        const CSimpleStimulus* Next(std::int64_t time) const noexcept;
        const CSimpleStimulus* Prev(std::int64_t time) const noexcept;
        std::size_t CountUpTo(std::int64_t time) const noexcept;

        std::vector<std::int64_t> times;  // rising, no two alike
        std::vector<const CSimpleStimulus*> elements;
        // where the last question ended: a walk asks for a neighbour next
        mutable std::size_t cursor = 0;
    };

    List lists_[2];  // relative, absolute
};

}  // namespace corv::stimulus
