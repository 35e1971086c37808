#include "stimulus/element_index.h"

#include <algorithm>

namespace corv::stimulus {

ElementIndex::ElementIndex(std::span<const std::unique_ptr<CSimpleStimulus>> elements) {
    lists_[0].Build(elements, false);
    lists_[1].Build(elements, true);
}

void ElementIndex::List::Build(std::span<const std::unique_ptr<CSimpleStimulus>> all,
                               bool absolute) {
    struct Entry {
        std::int64_t time;
        const CSimpleStimulus* element;
    };
    std::vector<Entry> entries;
    entries.reserve(all.size());
    for (const auto& element : all) {
        if ((element->Absolute() != 0) == absolute) {
            entries.push_back({element->GetTime(), element.get()});
        }
    }
    // Most formulas are in order of time already. Otherwise the sort must be stable, so that the
    // first of equal times stays first.
    const auto earlier = [](const Entry& a, const Entry& b) { return a.time < b.time; };
    if (!std::is_sorted(entries.begin(), entries.end(), earlier)) {
        std::stable_sort(entries.begin(), entries.end(), earlier);
    }
    times.reserve(entries.size());
    elements.reserve(entries.size());
    for (const Entry& entry : entries) {
        if (times.empty() || times.back() != entry.time) {
            times.push_back(entry.time);
            elements.push_back(entry.element);
        }
    }
}

std::size_t ElementIndex::List::Bisect(std::int64_t time) const noexcept {
    cursor = static_cast<std::size_t>(std::upper_bound(times.begin(), times.end(), time) -
                                      times.begin());
    return cursor;
}

}  // namespace corv::stimulus
