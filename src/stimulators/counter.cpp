// Counters. A counter keeps two values, before and after its current step, and the period between
// them. All wires of a vector share it, so each period is computed once however many wires ask.

#include "corv/stimulators/counter.h"

#include <algorithm>
#include <bit>
#include <string>

#include "platform/guard.h"
#include "stimulators/counter_text.h"
#include "util/saturate.h"
#include "util/time_text.h"

using corv::CCounterStimulusInfo;

namespace {

// The latest time that can be written in a formula.
constexpr std::int64_t kMaxTime = 9'200'000'000'000'000'000;
constexpr unsigned kBits = 64;
constexpr unsigned kWholeBits = 32;  // the bits of a whole value that are reversed

// The bit of weight 2^index; bits past the 64th do not exist.
constexpr std::uint64_t Bit(unsigned index) noexcept {
    return index < kBits ? std::uint64_t{1} << index : 0;
}

constexpr std::uint64_t Mask(unsigned width) noexcept {
    return width < kBits ? Bit(width) - 1 : ~std::uint64_t{0};
}

std::uint64_t GrayToBinary(std::uint64_t value, unsigned width) noexcept {
    for (unsigned i = std::min(width, kBits); i-- > 1;) {
        value ^= (value & Bit(i)) >> 1;
    }
    return value;
}

// Bit i goes to bit width-1-i; bits from the width on are dropped.
std::uint64_t Reverse(std::uint64_t value, unsigned width) noexcept {
    std::uint64_t out = 0;
    for (unsigned i = 0; i < std::min(width, kBits); ++i) {
        out |= (value & Bit(i)) != 0 ? Bit(width - 1 - i) : 0;
    }
    return out;
}

// Shifts one place; the inverse of the bit that is pushed out enters at the other end.
std::uint64_t NextJohnson(std::uint64_t value, bool up, unsigned width) noexcept {
    if (up) {
        return value << 1 | ((value & Bit(width - 1)) == 0 ? 1 : 0);
    }
    const auto shifted = static_cast<std::uint64_t>(static_cast<std::int64_t>(value) >> 1);
    return shifted | ((value & 1) == 0 ? Bit(width - 1) : 0);
}

// Returns the neighbour of the lowest bit that is set below the width (of bit 0 if there is none),
// going around at the ends.
unsigned NeighbourOfLowest(std::uint64_t bits, bool up, unsigned width) noexcept {
    bits &= Mask(width);
    const unsigned lowest = bits == 0 ? 0 : static_cast<unsigned>(std::countr_zero(bits));
    if (up) {
        return (lowest + 1) % width;
    }
    return lowest == 0 ? width - 1 : lowest - 1;
}

using TextGetter = bool (CCounterStimulusInfo::*)(char*, int) const;

std::optional<std::int64_t> ReadNumber(const CCounterStimulusInfo& settings,
                                       TextGetter get) noexcept {
    char text[corv::stimulators::kNumberRoom];
    return (settings.*get)(text, static_cast<int>(sizeof text))
               ? corv::stimulators::ReadCountNumber(text, settings.GetDisplayRadix())
               : std::nullopt;
}

std::int64_t AsSigned(std::uint64_t value) noexcept {
    return static_cast<std::int64_t>(value);
}
std::uint64_t AsBits(std::int64_t value) noexcept {
    return static_cast<std::uint64_t>(value);
}

void AppendEvent(std::string& out, std::int64_t value, std::int64_t time) {
    out += "10#";
    corv::util::AppendNumber(out, value);
    out += " @";
    corv::util::AppendNumber(out, time);
}

}  // namespace

bool CCounterState::Init(const char* formula, unsigned width, int split_mode) noexcept {
    ready_ = false;
    segment_.reset();
    if (!settings_.FromFormula(formula) || !ReadPeriod()) {
        return false;
    }
    const auto start = ReadNumber(settings_, &CCounterStimulusInfo::GetStartingValue);
    current_ = start.value_or(current_);
    const auto increment =
        start ? ReadNumber(settings_, &CCounterStimulusInfo::GetIncrementBy) : std::nullopt;
    if (!increment) {
        return false;
    }
    increment_ = *increment;
    width_ = width;
    split_mode_ = split_mode;
    if (settings_.GetType() == CCounterStimulusInfo::Gray) {
        current_ = AsSigned(GrayToBinary(AsBits(current_), width_));
    }
    ready_ = true;
    return true;
}

bool CCounterState::ReadPeriod() noexcept {
    char text[corv::stimulators::kPeriodRoom];
    if (!settings_.GetCountPeriod(text, sizeof text)) {
        return false;
    }
    const auto period = corv::stimulators::ReadCountPeriod(text);
    period_ = period.value_or(0);
    return period_ >= 1;
}

bool CCounterState::MakeWhole() noexcept {
    whole_ = settings_.GetType() == CCounterStimulusInfo::Binary;
    return whole_;
}

void CCounterState::NoteStartTime(std::int64_t time) noexcept {
    segment_end_ = std::max(segment_end_, time);
}

bool CCounterState::Answers(unsigned wire) const noexcept {
    return ready_ && wire < width_ && segment_end_ != -1;
}

int CCounterState::GetValue(unsigned wire, std::int64_t time, CString& value) noexcept {
    if (!Answers(wire) || ((!segment_ || time > segment_end_) && !Advance()) ||
        time < segment_->begin) {
        return 0;
    }
    const std::int64_t shown =
        time < segment_->end ? segment_->shown.before : segment_->shown.after;
    if (!whole_) {
        // wire 0 is the most significant one
        const unsigned bit = width_ - 1 - wire;
        value = (AsBits(shown) & Bit(bit)) != 0 ? '1' : '0';
        return 1;
    }
    return corv::platform::Done([&] {
        std::string text = "10#";
        corv::util::AppendNumber(text, shown);
        value = CString(std::move(text));
    })
               ? 1
               : 0;
}

std::int64_t CCounterState::GetNextEventTime(unsigned wire, std::int64_t time) noexcept {
    if (!Answers(wire) || ((!segment_ || time >= segment_end_) && !Advance())) {
        return -1;
    }
    if (time < segment_->begin) {
        return segment_->begin;
    }
    return time < segment_->end ? segment_->end : -1;
}

bool CCounterState::Advance() noexcept {
    segment_.reset();
    if (!ready_ || width_ == 0) {
        return false;
    }
    const Shown shown = StepShown();
    const auto end = corv::util::CheckedAdd(segment_end_, period_);
    if (segment_end_ < 0 || !end || *end > kMaxTime) {
        return false;
    }
    segment_ = Segment{segment_end_, *end, shown};
    segment_end_ = *end;
    return true;
}

bool CCounterState::BuildSegment(CString& out) noexcept {
    if (!ready_ || width_ == 0) {
        return false;
    }
    const Shown shown = StepShown();
    return corv::platform::Done([&] {
        std::string text;
        AppendEvent(text, shown.before, segment_end_);
        text += ',';
        AppendEvent(text, shown.after, corv::util::SaturatingAdd(segment_end_, period_));
        out = CString(std::move(text));
    });
}

// Makes one step. NextValue comes first, since the rules of one-hot and one-cold counters may
// replace a current value of 0.
CCounterState::Shown CCounterState::StepShown() noexcept {
    const std::int64_t next = NextValue();
    const Shown shown{ShownValue(current_), ShownValue(next)};
    current_ = next;
    return shown;
}

std::int64_t CCounterState::NextValue() noexcept {
    const bool up = settings_.GetDir() == CCounterStimulusInfo::Up;
    const std::uint64_t current = AsBits(current_);
    switch (settings_.GetType()) {
        case CCounterStimulusInfo::Binary:
        case CCounterStimulusInfo::Gray:
            return AsSigned(up ? current + AsBits(increment_) : current - AsBits(increment_));
        case CCounterStimulusInfo::Johnson:
            return AsSigned(NextJohnson(current, up, width_));
        case CCounterStimulusInfo::OneHot:
            current_ = current_ == 0 ? 1 : current_;
            return AsSigned(Bit(NeighbourOfLowest(AsBits(current_), up, width_)));
        case CCounterStimulusInfo::OneCold:
            current_ = current_ == 0 ? AsSigned(Mask(width_) ^ 1) : current_;
            return AsSigned(Mask(width_) ^ Bit(NeighbourOfLowest(~AsBits(current_), up, width_)));
    }
    return -1;  // there is no such kind of counter
}

std::int64_t CCounterState::ShownValue(std::int64_t value) const noexcept {
    std::uint64_t bits = AsBits(value);
    if (settings_.GetType() == CCounterStimulusInfo::Gray) {
        bits &= Mask(width_);
        bits ^= bits >> 1;
    }
    if (settings_.GetReverseBitOrder()) {
        bits = Reverse(bits, whole_ ? kWholeBits : width_);
    }
    return AsSigned(whole_ ? bits : bits & Mask(width_));
}
