#include "corv/stimulus/custom_iterator.h"

#include "corv/stimulus/custom_stimulus.h"

using Time = TTimeUnit<std::int64_t>;

// The walk keeps nothing but the time of its last event and asks the stimulus for the next one, so
// a recording of any length can be walked without memory for its events.
CCustomIterator::CCustomIterator(CCustomStimulus* stimulus) noexcept : stimulus_(stimulus) {
    Reset();
}

void CCustomIterator::Reset() noexcept {
    current_ = Time(-1);
}

const CSimpleStimulus* CCustomIterator::Next() noexcept {
    current_ = Time(stimulus_ != nullptr ? stimulus_->GetNextEventTime(current_.GetTime()) : -1);
    if (current_.value == -1) {
        return nullptr;
    }
    value_.Empty();
    stimulus_->GetValue(current_.value, value_);
    time_ = current_;
    absolute_ = 1;
    return this;
}
