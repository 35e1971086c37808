#include "stremo/vcd/codes.h"

#include <algorithm>
#include <utility>

namespace corv::vcd {

using recording::kNone;

namespace {

// Whether a slot is that of a code.
auto Has(EightBytes bytes) noexcept {
    return [bytes](const auto& slot) { return slot.bytes == bytes; };
}

}  // namespace

std::uint32_t Codes::FindFar(const Code& code) const noexcept {
    if (code.length > sizeof code.bytes) {
        const auto found = long_.find(code.text());
        return found != long_.end() ? found->second : kNone;
    }
    return used_ == 0 ? kNone : slots_.SlotOf(code.bytes, Has(code.bytes)).number;
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
    if (!slots_.HasRoomFor(used_ + 1)) {
        Grow();
    }
    Slot& slot = slots_.SlotOf(code.bytes, Has(code.bytes));
    used_ += slot.bytes == 0 ? 1 : 0;
    slot = {code.bytes, number};
}

void Codes::Grow() {
    util::FlatIndex<Slot> larger;
    larger.Reserve(std::max<std::size_t>(512, used_ + 1));
    slots_.ForEach([&](const Slot& slot) { larger.SlotOf(slot.bytes, Has(slot.bytes)) = slot; });
    slots_ = std::move(larger);
}

}  // namespace corv::vcd
