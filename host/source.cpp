#include "host/source.h"

#include <algorithm>
#include <limits>

#include "corv/stimulus/stim_iterator.h"

namespace corv::host {
namespace {

constexpr std::int64_t kLastTime = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kSmallestWindow = 1000;  // a window around a single event: 1 ns

// An eighth more than the distance from the start, so that the last value can be seen.
std::int64_t WithMargin(std::int64_t start, std::int64_t last) {
    const std::int64_t from = std::max(start, last);
    return Later(from, std::max<std::int64_t>((from - start) / 8, last > start ? 1 : 0));
}

struct LastTimes {
    std::int64_t relative = -1;
    std::int64_t absolute = -1;
};

LastTimes LastElements(CStimulus& stimulus) {
    LastTimes last;
    CStimIterator elements(&stimulus);
    while (const CSimpleStimulus* element = elements.Next()) {
        std::int64_t& kind = element->Absolute() ? last.absolute : last.relative;
        kind = std::max(kind, element->GetTime());
    }
    return last;
}

}  // namespace

std::int64_t Later(std::int64_t time, std::int64_t by) {
    return time > kLastTime - by ? kLastTime : time + by;
}

std::optional<std::string> StimulusSource::ValueAt(std::int64_t time) {
    CString value;
    if (time < 0 || !stimulus_->GetValue(time, value)) {
        return std::nullopt;
    }
    return std::string(value.View());
}

std::int64_t StimulusSource::NaturalEnd(std::int64_t start) {
    const std::int64_t first = std::max<std::int64_t>(stimulus_->GetNextEventTime(-1), 0);
    const LastTimes last = LastElements(*stimulus_);
    const std::int64_t period = stimulus_->GetRepeatRate();
    std::int64_t end = WithMargin(start, last.absolute);
    if (period > 0 && last.relative >= 0) {
        end = std::max(end, Later(Later(std::max(start, first), period), period));
    } else {
        end = std::max(end,
                       WithMargin(start, Later(first, std::max<std::int64_t>(last.relative, 0))));
    }
    return end > start ? end : Later(start, kSmallestWindow);
}

}  // namespace corv::host
