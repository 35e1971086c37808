#include "containers/ordered_scalars.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace corv::containers {
namespace {

constexpr std::size_t kFirstScalars = 16;
constexpr std::size_t kMostLate = 1024;

template <class List>
auto PlaceOf(List& slots, int handle) noexcept {
    return std::partition_point(slots.begin(), slots.end(),
                                [handle](const auto& slot) { return slot.handle < handle; });
}

}  // namespace

template <class List>
auto OrderedScalars::SlotOf(List& slots, int handle) noexcept {
    if (slots.empty() || slots.back().handle < handle) {
        return slots.end();
    }
    const auto place = PlaceOf(slots, handle);
    return place->handle == handle ? place : slots.end();
}

void OrderedScalars::Reserve() {
    main_.reserve(kFirstScalars);
}

ScalarData* OrderedScalars::Find(int handle) const noexcept {
    const auto slot = SlotOf(main_, handle);
    if (slot != main_.end()) {
        return slot->scalar;
    }
    const auto late = SlotOf(late_, handle);
    return late != late_.end() ? late->scalar : nullptr;
}

void OrderedScalars::Insert(int handle, Ptr scalar) {
    MakeRoom();
    if (main_.empty() || main_.back().handle < handle) {
        main_.push_back({handle, scalar.Detach()});
        return;
    }
    const auto gap = PlaceOf(main_, handle);
    if (gap->handle == handle) {
        gap->scalar = scalar.Detach();
        --gaps_;
        return;
    }
    late_.reserve(kMostLate);
    late_.insert(PlaceOf(late_, handle), {handle, scalar.Detach()});
    if (late_.size() == kMostLate) {
        Combine();
    }
}

// Room in the main list for all late scalars and one more, so that neither merging nor what
// follows here needs memory.
void OrderedScalars::MakeRoom() {
    const std::size_t needed = main_.size() + late_.size() + 1;
    if (main_.capacity() < needed) {
        main_.reserve(std::max(needed, 2 * main_.capacity()));
    }
}

void OrderedScalars::Remove(int handle) noexcept {
    Ptr removed;
    if (const auto slot = SlotOf(main_, handle); slot != main_.end()) {
        removed = Ptr(std::exchange(slot->scalar, nullptr));
        gaps_ += removed ? 1 : 0;
    } else if (const auto late = SlotOf(late_, handle); late != late_.end()) {
        removed = Ptr(late->scalar);
        late_.erase(late);
    }
    if (2 * gaps_ > main_.size()) {
        Combine();
    }
}

void OrderedScalars::Clear() noexcept {
    Combine();
    for (const Slot& slot : main_) {
        slot.scalar->Release();
    }
    main_.clear();
}

ScalarData* OrderedScalars::At(std::size_t index) noexcept {
    if (gaps_ > 0 || !late_.empty()) {
        Combine();
    }
    return index < main_.size() ? main_[index].scalar : nullptr;
}

void OrderedScalars::Combine() noexcept {
    if (gaps_ > 0) {
        std::erase_if(main_, [](const Slot& slot) { return slot.scalar == nullptr; });
        gaps_ = 0;
    }
    const auto middle = static_cast<std::ptrdiff_t>(main_.size());
    main_.insert(main_.end(), late_.begin(), late_.end());
    std::inplace_merge(main_.begin(), main_.begin() + middle, main_.end(), IsBefore);
    late_.clear();
}

}  // namespace corv::containers
