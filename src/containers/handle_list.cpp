#include "containers/handle_list.h"

#include <algorithm>
#include <cstdint>

namespace corv::containers {
namespace {

constexpr std::size_t kFewestIndexed = 33;  // a shorter list is looked through faster
constexpr std::size_t kFewestSlots = 128;

// Spreads handles that stand at equal distances.
std::size_t HashOf(int handle) noexcept {
    const std::uint64_t mixed = static_cast<std::uint32_t>(handle) * 0x9E3779B97F4A7C15U;
    return static_cast<std::size_t>(mixed >> 32);
}

}  // namespace

void HandleList::Add(int handle) {
    if (handle <= highest_ && Contains(handle)) {
        return;
    }
    handles_.push_back(handle);
    highest_ = std::max(highest_, handle);
}

void HandleList::Clear() noexcept {
    *this = HandleList();
}

bool HandleList::Contains(int handle) {
    if (handles_.size() < kFewestIndexed) {
        return std::find(handles_.begin(), handles_.end(), handle) != handles_.end();
    }
    FillIndex();
    return SlotOf(handle) == handle;
}

void HandleList::FillIndex() {
    if (2 * handles_.size() > slots_.size()) {
        slots_ = std::vector<int>(std::max(2 * slots_.size(), kFewestSlots), -1);
        indexed_ = 0;
        return FillIndex();
    }
    for (; indexed_ < handles_.size(); ++indexed_) {
        SlotOf(handles_[indexed_]) = handles_[indexed_];
    }
}

// The handle's slot, or the free one for it.
int& HandleList::SlotOf(int handle) noexcept {
    const std::size_t mask = slots_.size() - 1;
    std::size_t place = HashOf(handle) & mask;
    while (slots_[place] != -1 && slots_[place] != handle) {
        place = (place + 1) & mask;
    }
    return slots_[place];
}

}  // namespace corv::containers
