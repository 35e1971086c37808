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

// The number of times at or before `time`.
std::size_t ElementIndex::List::CountUpTo(std::int64_t time) const noexcept {
    const std::size_t n = times.size();
    const auto is_count = [&](std::size_t count) {
        return (count == 0 || times[count - 1] <= time) && (count == n || times[count] > time);
    };
    if (is_count(cursor)) {
        return cursor;
    }
    if (cursor < n && is_count(cursor + 1)) {
        return ++cursor;
    }
    cursor = static_cast<std::size_t>(std::upper_bound(times.begin(), times.end(), time) -
                                      times.begin());
    return cursor;
}

const CSimpleStimulus* ElementIndex::List::Next(std::int64_t time) const noexcept {
    const std::size_t count = CountUpTo(time);
    if (count > 0 && times[count - 1] == time) {
        return elements[count - 1];
    }
    return count < elements.size() ? elements[count] : nullptr;
}

const CSimpleStimulus* ElementIndex::List::Prev(std::int64_t time) const noexcept {
    const std::size_t count = CountUpTo(time);
    return count > 0 ? elements[count - 1] : nullptr;
}

}  // namespace corv::stimulus
