#include "stremo/vcd/codes.h"

#include <algorithm>
#include <bit>

namespace corv::vcd {

using recording::kNone;

std::uint32_t Codes::FindFar(const Code& code) const noexcept {
    if (code.length > sizeof code.bytes) {
        const auto found = long_.find(code.text());
        return found != long_.end() ? found->second : kNone;
    }
    return slots_.empty() ? kNone : slots_[SlotOf(code.bytes)].number;
}

void Codes::Set(const Code& code, std::uint32_t number) {
    if (code.length <= 3 && NearPlace(code) < detail::kNoDigit) {
        const std::size_t place = NearPlace(code);
        if (place >= near_.size()) {
            near_.resize(place + 1, kNone);
        }
        near_[place] = number;
        return;
    }
    if (code.length > sizeof code.bytes) {
        long_[code.text()] = number;
        return;
    }
    if (2 * (used_ + 1) > slots_.size()) {
        Grow();
    }
    Slot& slot = slots_[SlotOf(code.bytes)];
    used_ += slot.bytes == 0 ? 1 : 0;
    slot = {code.bytes, number};
}

// Returns the slot of a code, or the free one that it would take. The multiplication mixes all
// bytes into the high bits, of which as many are used as there are slots.
std::size_t Codes::SlotOf(EightBytes bytes) const noexcept {
    const int shift = 64 - std::countr_zero(slots_.size());
    auto slot = static_cast<std::size_t>((bytes * 0x9E3779B97F4A7C15U) >> shift);
    while (slots_[slot].bytes != 0 && slots_[slot].bytes != bytes) {
        slot = (slot + 1) & (slots_.size() - 1);
    }
    return slot;
}

void Codes::Grow() {
    std::vector<Slot> old(std::max<std::size_t>(1024, 2 * slots_.size()));
    old.swap(slots_);
    for (const Slot& slot : old) {
        if (slot.bytes != 0) {
            slots_[SlotOf(slot.bytes)] = slot;
        }
    }
}

}  // namespace corv::vcd
