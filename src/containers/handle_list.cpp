#include "containers/handle_list.h"

#include <algorithm>

namespace corv::containers {
namespace {

constexpr std::size_t kFewestIndexed = 33;  // a shorter list is looked through faster

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
    return EntryOf(handle) != 0;
}

void HandleList::FillIndex() {
    if (index_.Reserve(handles_.size())) {
        indexed_ = 0;
    }
    for (; indexed_ < handles_.size(); ++indexed_) {
        const int handle = handles_[indexed_];
        EntryOf(handle) = static_cast<std::uint32_t>(handle) + 1;
    }
}

std::uint32_t& HandleList::EntryOf(int handle) noexcept {
    const std::uint32_t entry = static_cast<std::uint32_t>(handle) + 1;
    return index_.SlotOf(entry, [entry](std::uint32_t found) { return found == entry; });
}

}  // namespace corv::containers
