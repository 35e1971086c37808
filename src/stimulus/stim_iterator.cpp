#include "corv/stimulus/stim_iterator.h"

#include "corv/stimulus/stimulus.h"
#include "platform/guard.h"

namespace {

// If out of memory, a copy has no events.
std::unique_ptr<CCustomIterator> CopyOf(const CCustomIterator* custom) noexcept {
    std::unique_ptr<CCustomIterator> copy;
    if (custom != nullptr) {
        corv::platform::Done([&] { copy = std::make_unique<CCustomIterator>(*custom); });
    }
    return copy;
}

}  // namespace

CStimIterator::CStimIterator(CStimulus* stimulus) noexcept : stimulus_(stimulus), position_(0) {
    if (stimulus != nullptr && stimulus->IsCustom()) {
        corv::platform::Done(
            [&] { custom_ = std::make_unique<CCustomIterator>(stimulus->GetCustom()); });
    }
}

CStimIterator::CStimIterator(const CStimIterator& other) noexcept
    : stimulus_(other.stimulus_),
      custom_(CopyOf(other.custom_.get())),
      position_(other.position_) {}

CStimIterator& CStimIterator::operator=(const CStimIterator& other) noexcept {
    if (this != &other) {
        stimulus_ = other.stimulus_;
        custom_ = CopyOf(other.custom_.get());
        position_ = other.position_;
    }
    return *this;
}

CStimIterator::~CStimIterator() = default;

void CStimIterator::Reset() noexcept {
    position_ = 0;
    if (custom_) {
        custom_->Reset();
    }
}

const CSimpleStimulus* CStimIterator::Next() noexcept {
    if (custom_) {
        return custom_->Next();
    }
    if (!stimulus_ || static_cast<std::size_t>(position_) >= stimulus_->elements_.size()) {
        return nullptr;
    }
    return stimulus_->elements_[static_cast<std::size_t>(position_++)].get();
}
