#include "corv/stimulus/stim_iterator.h"

#include "corv/stimulus/stimulus.h"

CStimIterator::CStimIterator(CStimulus* stimulus) noexcept : stimulus_(stimulus), position_(0) {}

void CStimIterator::Reset() noexcept {
    position_ = 0;
}

const CSimpleStimulus* CStimIterator::Next() noexcept {
    if (!stimulus_ || static_cast<std::size_t>(position_) >= stimulus_->elements_.size()) {
        return nullptr;
    }
    return stimulus_->elements_[static_cast<std::size_t>(position_++)].get();
}
