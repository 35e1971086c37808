#include "stremo/vcd/changes.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace corv::vcd {

using recording::AllElements;
using recording::Channel;
using recording::ElementBit;
using recording::kNone;

namespace {

// All changes are read in one go and stay in memory, where the values at the start of each block
// matter more than the search within it. So blocks are larger than those of a file that is searched
// on the disk.
std::uint64_t BlockEvents(const recording::SignalTable& signals) noexcept {
    return std::clamp<std::uint64_t>(std::uint64_t{16} * signals.channel_count(), 1U << 12,
                                     1U << 20);
}

}  // namespace

Changes::Changes(const platform::FileContent& content, const Declarations& declarations,
                 const recording::SignalTable& signals, std::span<const std::uint32_t> leaves,
                 recording::BlockSink& blocks, Notes& notes)
    : content_(content),
      file_(content.bytes()),
      signals_(signals),
      notes_(notes),
      codes_(declarations.codes),
      time_scale_(declarations.time_scale),
      first_change_(declarations.changes),
      builder_(signals, blocks, recording::EventOrder::kBySignal, BlockEvents(signals)),
      held_(signals.channel_count()),
      levels_(signals.leaf_count(), kNoLevel),
      wanted_(signals.channel_count(), leaves.empty()) {
    for (std::uint32_t i = 0; i < held_.size(); ++i) {
        held_[i].others = AllElements(signals.channel(i).count);
    }
    MakeTargets(declarations, leaves);
}

void Changes::MakeTargets(const Declarations& declarations, std::span<const std::uint32_t> leaves) {
    for (const std::uint32_t leaf : leaves) {
        wanted_[signals_.LeafChannel(leaf)] = true;
    }
    targets_.reserve(declarations.variables.size());
    for (const Variable& variable : declarations.variables) {
        Target target{variable.kind, false, false,        variable.width,
                      variable.leaf, kNone, variable.next};
        if (variable.leaf != kNone) {
            target.channel = signals_.LeafChannel(variable.leaf);
            const std::uint32_t last =
                signals_.LeafChannel(variable.leaf + LeafCount(variable) - 1);
            const auto first = wanted_.begin() + target.channel;
            target.wanted =
                std::find(first, wanted_.begin() + last + 1, true) != wanted_.begin() + last + 1;
        }
        targets_.push_back(target);
    }
}

bool Changes::Read(const Byte* end, const Passed& passed) {
    ScanContent(
        content_, *this, first_change_, end, [this] { return !kept_; },
        [&](Bytes part) {
            CountZeros(part);
            passed(part);
        });
    ReadLastWord(end);
    if (block_ != nullptr) {
        Note(Problem::kOpenBlock, block_, {});
    }
    if (off_ != nullptr) {
        notes_.Say(static_cast<std::size_t>(off_ - file_.data()),
                   "nothing is recorded from " + std::to_string(off_time_) + " ps on");
    }
    if (zeros_ > 0) {
        notes_.Say(first_zero_,
                   std::to_string(zeros_) + " zero bytes; what they stand for is lost");
    }
    return builder_.Flush() && kept_;
}

// Counts zero bytes, which the scanner treats as blanks.
void Changes::CountZeros(Bytes part) noexcept {
    const void* const first = std::memchr(part.data(), 0, part.size());
    if (first != nullptr) {
        const auto* const zero = static_cast<const Byte*>(first);
        first_zero_ = zeros_ > 0 ? first_zero_ : static_cast<std::size_t>(zero - file_.data());
        zeros_ += static_cast<std::uint64_t>(std::count(zero, part.data() + part.size(), Byte{0}));
    }
}

// Reads the last word, which may have been cut. A time is accepted if it is not before the previous
// one.
void Changes::ReadLastWord(const Byte* end) {
    const Byte* const file_end = file_.data() + file_.size();
    content_.Bring({end, file_end});
    const std::string_view word = vcd::Text(end, file_end);
    if (word.empty()) {
        return;
    }
    if (const auto time = IsTimeWord(word) ? ReadDecimal(word.substr(1)) : std::nullopt;
        time && *time >= time_) {
        Time(*time, end);
    } else {
        Note(Problem::kCut, end, {});
    }
}

// ---- times and blocks ----

void Changes::Time(std::uint64_t time, const Byte* at) {
    block_over_ = true;
    if (time < time_) {
        Note(Problem::kTimeBack, at, vcd::Text(at, WordEnd(at, file_.data() + file_.size())));
        return;
    }
    time_ = time;
    latest_ = time_scale_.ToPicoseconds(time);
    builder_.SetTime(latest_);
}

void Changes::BeginBlock(std::string_view word, const Byte* at) {
    if (block_ != nullptr) {
        Note(Problem::kOpenBlock, block_, {});
    }
    block_ = at;
    block_over_ = false;
    if (word == "$dumpoff" || word == "$dumpportsoff") {
        off_ = at;
        off_time_ = builder_.time();
    } else if (off_ != nullptr && (word == "$dumpon" || word == "$dumpportson")) {
        notes_.Say(static_cast<std::size_t>(off_ - file_.data()),
                   "nothing is recorded from " + std::to_string(off_time_) + " ps to " +
                       std::to_string(builder_.time()) + " ps");
        off_ = nullptr;
    }
}

// ---- values ----

// Calls `action` with the variables of a code that are of interest. Returns false for an undeclared
// code.
template <class Action>
bool Changes::ForTargets(const Code& code, Action action) {
    std::uint32_t number = codes_.Find(code);
    if (number == kNone) {
        return false;
    }
    for (; number != kNone; number = targets_[number].next) {
        if (targets_[number].wanted) {
            action(targets_[number]);
        }
    }
    return true;
}

bool Changes::Scalar(unsigned level, const Code& code) {
    return ForTargets(code, [&](Target& target) {
        if (target.kind == Kind::kBits && target.width == 1) [[likely]] {
            SetLevel(target, level);
        } else {
            const Byte* const digit = code.at - 1;
            SetDigits(target, {digit, 1, *digit & 1U, level == kLevel0 || level == kLevel1});
        }
    });
}

bool Changes::Vector(const Digits& digits, const Code& code) {
    return ForTargets(code, [&](Target& target) {
        if (digits.count == 0) {
            Note(Problem::kWrongKind, digits.at - 1, vcd::Text(digits.at - 1, digits.at));
        } else {
            SetDigits(target, digits);
        }
    });
}

bool Changes::Real(std::string_view text, const Code& code) {
    return ForTargets(code, [&](Target& target) {
        double number = 0;
        bool passes = false;
        if (target.kind != Kind::kReal || !ReadReal(text, number, passes)) {
            WrongKind(text);
            return;
        }
        if (passes) {
            Note(Problem::kInfinite, reinterpret_cast<const Byte*>(text.data()) - 1, text);
        }
        SetNumber(target, std::bit_cast<std::uint64_t>(number));
    });
}

bool Changes::Text(std::string_view text, const Code& code) {
    return ForTargets(code, [&](Target& target) {
        target.kind == Kind::kString ? SetText(target, text) : WrongKind(text);
    });
}

bool Changes::Port(std::string_view states, const Code& code) {
    return ForTargets(code, [&](Target& target) {
        // written as digits of the levels, so that a port can be read like a vector
        characters_.clear();
        for (const char state : states) {
            const unsigned level = LevelOfPort(static_cast<Byte>(state));
            characters_ += kLevels[level < kLevels.size() ? level : unsigned{kLevelX}];
        }
        characters_.erase(
            0, characters_.size() - std::min<std::size_t>(characters_.size(), target.width));
        const auto* const begin = reinterpret_cast<const Byte*>(characters_.data());
        if (characters_.empty() || target.kind != Kind::kBits) {
            WrongKind(states);
        } else {
            SetDigits(target, {begin, characters_.size(), 0, false});
        }
    });
}

// The value is in the file, after the letter of its kind.
void Changes::WrongKind(std::string_view value) {
    Note(Problem::kWrongKind, reinterpret_cast<const Byte*>(value.data()) - 1, value);
}

// Adds the event of an event variable. What a block of values says about one is not an event.
void Changes::Trigger(const Target& target, const Digits& digits) {
    if ((block_ == nullptr || block_over_) && digits.at[digits.count - 1] == '1') {
        const std::uint64_t value = 0;
        kept_ = builder_.SetElements(target.channel, 1, &value) && kept_;
    }
}

void Changes::SetLevel(Target& target, unsigned level) {
    if (target.level == level) {
        return;
    }
    if ((target.level ^ level) == 1) {
        kept_ = builder_.Toggle(target.channel, 1) && kept_;
    } else {
        const std::uint64_t value = level;
        kept_ = builder_.SetElements(target.channel, 1, &value) && kept_;
    }
    target.level = level;
}

void Changes::SetDigits(Target& target, const Digits& digits) {
    if (target.kind == Kind::kBits && target.width > 1) [[likely]] {
        SetVector(target, digits);
    } else if (target.kind == Kind::kInteger) {
        SetInteger(target, digits);
    } else if (target.kind == Kind::kEvent) {
        Trigger(target, digits);
    } else if (target.kind == Kind::kBits) {
        const unsigned level = LevelOf(digits.at[digits.count - 1]);
        level < kLevels.size() ? SetLevel(target, level)
                               : WrongKind(vcd::Text(digits.at, digits.at + digits.count));
    } else {
        WrongKind(vcd::Text(digits.at, digits.at + digits.count));
    }
}

void Changes::SetVector(Target& target, const Digits& digits) {
    if (digits.count > target.width) {
        Note(Problem::kTooManyDigits, digits.at - 1,
             vcd::Text(digits.at, digits.at + digits.count));
    }
    if (digits.two_valued && target.width <= recording::kMostElements) [[likely]] {
        SetPlain(target.channel,
                 static_cast<std::uint32_t>(digits.bits) & AllElements(target.width));
        return;
    }
    SpreadDigits(digits, target.width);
    std::uint32_t channel = target.channel;
    for (std::uint32_t done = 0; done < target.width; ++channel) {
        SetLevels(channel, spread_.data() + done);
        done += signals_.channel(channel).count;
    }
}

// Sets new values of a channel, all of them 0 or 1.
void Changes::SetPlain(std::uint32_t channel, std::uint32_t bits) {
    Held& held = held_[channel];
    if (held.others == 0) [[likely]] {
        const std::uint32_t changed = held.bits ^ bits;
        if (changed != 0) {
            held.bits = bits;
            kept_ = builder_.Toggle(channel, changed) && kept_;
        }
        return;
    }
    const std::uint32_t count = signals_.channel(channel).count;
    unsigned char levels[recording::kMostElements];
    for (std::uint32_t i = 0; i < count; ++i) {
        levels[i] = static_cast<unsigned char>(kLevel0 + (bits >> (count - 1 - i) & 1));
    }
    SetLevels(channel, levels);
}

// Sets new levels of a channel's elements.
void Changes::SetLevels(std::uint32_t number, const unsigned char* levels) {
    const Channel channel = signals_.channel(number);
    Held& held = held_[number];
    Held next;
    std::uint32_t changed = 0;
    std::uint64_t values[recording::kMostElements];
    std::uint64_t* value = values;
    for (std::uint32_t i = 0; i < channel.count; ++i) {
        const std::uint32_t bit = ElementBit(i, channel.count);
        const unsigned before = (held.others & bit) != 0 ? levels_[channel.first_leaf + i]
                                                         : kLevel0 + ((held.bits & bit) != 0);
        const unsigned level = levels[i];
        next.bits |= level == kLevel1 ? bit : 0;
        next.others |= level != kLevel0 && level != kLevel1 ? bit : 0;
        levels_[channel.first_leaf + i] = static_cast<unsigned char>(level);
        if (level != before) {
            changed |= bit;
            *value++ = level;
        }
    }
    held = next;
    if (changed != 0 && wanted_[number]) {
        kept_ = builder_.SetElements(number, changed, values) && kept_;
    }
}

// Stores the levels of a value's digits for that many elements.
void Changes::SpreadDigits(const Digits& digits, std::uint32_t width) {
    spread_.resize(width);
    const std::size_t left = digits.count > width ? digits.count - width : 0;
    const std::size_t count = digits.count - left;
    const std::size_t missing = width - count;
    const unsigned first = LevelOf(digits.at[0]);
    std::fill_n(spread_.begin(), missing, static_cast<unsigned char>(ExtendingLevel(first)));
    for (std::size_t i = 0; i < count; ++i) {
        const unsigned level = LevelOf(digits.at[left + i]);
        spread_[missing + i] = static_cast<unsigned char>(level);
    }
    for (unsigned char& level : spread_) {
        if (level >= kLevels.size()) {
            Note(Problem::kNonsense, digits.at - 1, vcd::Text(digits.at, digits.at + digits.count));
            std::replace_if(
                spread_.begin(), spread_.end(),
                [](unsigned char other) { return other >= kLevels.size(); },
                static_cast<unsigned char>(kLevelX));
            break;
        }
    }
}

// Sets an integer in two's complement; missing digits are zeros.
void Changes::SetInteger(Target& target, const Digits& digits) {
    if (!digits.two_valued) {
        return;  // the survey has shown that this comes before the first number: no value yet
    }
    if (digits.count > target.width) {
        Note(Problem::kTooManyDigits, digits.at - 1,
             vcd::Text(digits.at, digits.at + digits.count));
    }
    std::uint32_t number = static_cast<std::uint32_t>(digits.bits) & AllElements(target.width);
    const std::uint32_t sign = std::uint32_t{1} << (target.width - 1);
    number = (number ^ sign) - sign;
    SetNumber(target, number);
}

void Changes::SetNumber(Target& target, std::uint64_t number) {
    if (!target.known || target.number != number) {
        target.known = true;
        target.number = number;
        kept_ = builder_.SetElements(target.channel, 1, &number) && kept_;
    }
}

// Sets a text, padded with blanks.
void Changes::SetText(Target& target, std::string_view text) {
    Unescape(text, characters_);
    if (characters_.size() > target.width) {
        Note(Problem::kLongString, reinterpret_cast<const Byte*>(text.data()) - 1, text);
    }
    characters_.resize(target.width, ' ');
    for (std::uint32_t i = 0; i < target.width && !target.known; ++i) {
        levels_[target.leaf + i] = static_cast<unsigned char>(characters_[i] ^ 1);  // all differ
    }
    target.known = true;
    std::uint32_t channel = target.channel;
    for (std::uint32_t done = 0; done < target.width; ++channel) {
        SetLevels(channel, reinterpret_cast<const unsigned char*>(characters_.data()) + done);
        done += signals_.channel(channel).count;
    }
}

}  // namespace corv::vcd
