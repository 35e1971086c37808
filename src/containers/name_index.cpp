#include "containers/name_index.h"

#include <algorithm>

#include "corv/signals/signal.h"
#include "platform/ascii.h"

namespace corv::containers {
namespace {

constexpr std::size_t kFewestSlots = 64;

std::uint64_t Hash(std::string_view name) noexcept {
    std::uint64_t hash = 0xCBF29CE484222325U;
    for (const char c : name) {
        hash = (hash ^ static_cast<unsigned char>(platform::Lower(c))) * 0x100000001B3U;
    }
    return hash ^ hash >> 32;
}

}  // namespace

bool IsNamed(const char* name, std::string_view text) noexcept {
    for (const char c : text) {
        if (platform::Lower(*name) != platform::Lower(c)) {
            return false;
        }
        ++name;
    }
    return *name == '\0';
}

ISignal* NameIndex::Find(const std::vector<ISignal*>& signals, std::string_view name) {
    while (indexed_ < signals.size()) {
        if (2 * (indexed_ + 1) > slots_.size()) {
            Grow(signals);
        }
        Append(signals, indexed_++);
    }
    const std::uint32_t found = slots_.empty() ? 0 : slots_[FindSlot(signals, name)];
    return found != 0 ? signals[found - 1] : nullptr;
}

void NameIndex::Reset() noexcept {
    slots_.clear();
    indexed_ = 0;
}

std::size_t NameIndex::FindSlot(const std::vector<ISignal*>& signals,
                                std::string_view name) const noexcept {
    std::size_t slot = Hash(name) & (slots_.size() - 1);
    while (slots_[slot] != 0) {
        const char* const found = signals[slots_[slot] - 1]->GetName();
        if (found != nullptr && IsNamed(found, name)) {
            break;
        }
        slot = (slot + 1) & (slots_.size() - 1);
    }
    return slot;
}

void NameIndex::Append(const std::vector<ISignal*>& signals, std::size_t place) noexcept {
    if (const char* const name = signals[place]->GetName()) {
        std::uint32_t& slot = slots_[FindSlot(signals, name)];
        slot = slot == 0 ? static_cast<std::uint32_t>(place + 1) : slot;
    }
}

void NameIndex::Grow(const std::vector<ISignal*>& signals) {
    slots_ = std::vector<std::uint32_t>(std::max(kFewestSlots, 2 * slots_.size()));
    for (std::size_t i = 0; i < indexed_; ++i) {
        Append(signals, i);
    }
}

}  // namespace corv::containers
