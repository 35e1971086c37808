#include "stremo/leaf_cursor.h"

#include <algorithm>
#include <bit>
#include <utility>

#include "platform/guard.h"
#include "stremo/stream_error.h"

namespace corv::recording {

LeafCursor::LeafCursor(std::shared_ptr<BlockStore> blocks, const SignalTable& signals,
                       std::uint32_t leaf) noexcept
    : held_blocks_(std::move(blocks)),
      blocks_(*held_blocks_),
      signals_(signals),
      number_(signals.LeafChannel(leaf)),
      count_(signals.channel(number_).count),
      element_(leaf - signals.channel(number_).first_leaf) {}

// ---- questions ----

std::int64_t LeafCursor::NextTime(std::int64_t time) {
    if (loaded_ && time >= next_from_ && !events_.empty() && time < events_.back().time) {
        return events_[CountUpTo(time)].time;
    }
    ClearError();
    if (time >= nothing_from_) {
        return -1;
    }
    return platform::Guarded(std::int64_t{-1}, [&]() -> std::int64_t {
        const std::optional<std::size_t> block = blocks_.FindFrom(time + 1);
        return block ? SearchFrom(*block, time) : -1;
    });
}

bool LeafCursor::Value(std::int64_t time, void* value) {
    if (!loaded_ || time < from_ || time > until_) {
        ClearError();
        if (!platform::Guarded(false, [&] { return LoadAround(time); })) {
            return false;
        }
    }
    const std::size_t count = CountUpTo(time);
    if (count == 0 && !before_) {
        return false;
    }
    StoreValue(value, count > 0 ? events_[count - 1].value : *before_);
    return true;
}

std::int64_t LeafCursor::LastTime() {
    ClearError();
    return platform::Guarded(std::int64_t{-1}, [&]() -> std::int64_t {
        for (std::size_t block = blocks_.Count(); block-- > 0;) {
            const std::optional<BlockView> view = OpenBlock(blocks_, block, signals_);
            if (!view) {
                return -1;
            }
            if (view->Changes(number_) && Load(block) && !events_.empty()) {
                return events_.back().time;
            }
        }
        return -1;
    });
}

// ---- blocks ----

std::int64_t LeafCursor::SearchFrom(std::size_t block, std::int64_t time) {
    for (const std::size_t first = block; block < blocks_.Count(); ++block) {
        const std::optional<BlockView> view = OpenBlock(blocks_, block, signals_);
        if (!view) {
            return -1;
        }
        if (!view->Changes(number_)) {
            continue;
        }
        if (!Load(block)) {
            return -1;
        }
        if (!events_.empty() && events_.back().time > time) {
            // Blocks were skipped: their times are known to have no event of the leaf either, but
            // only from this question on.
            next_from_ = block == first ? next_from_ : time;
            return events_[CountUpTo(time)].time;
        }
    }
    if (blocks_.EndsThere()) {
        nothing_from_ = time;
    } else {
        blocks_.BlameEnd();
    }
    return -1;
}

// Loads the block that has the value at a time: the last one that begins at or before it.
bool LeafCursor::LoadAround(std::int64_t time) {
    const std::optional<std::size_t> count = blocks_.CountUpTo(time);
    if (!count || (*count > 0 && !Load(*count - 1))) {
        return false;
    }
    if (blocks_.Count() == 0 || (*count > 0 && time > until_)) {
        blocks_.BlameEnd();
    }
    return *count > 0 && time <= until_;
}

bool LeafCursor::Load(std::size_t block) {
    if (loaded_ && block == block_) {
        return true;
    }
    loaded_ = false;
    hint_ = 0;
    const std::optional<BlockView> view = OpenBlock(blocks_, block, signals_);
    if (!view || !LoadSpan(block)) {
        return false;
    }
    if (!ReadEvents(*view)) {
        blocks_.Blame(block);
        return false;
    }
    block_ = block;
    loaded_ = true;
    return true;
}

// Sets the times for which the block has the answers.
bool LeafCursor::LoadSpan(std::size_t block) {
    const std::optional<BlockHead> head = blocks_.Head(block);
    const std::optional<BlockHead> before = block > 0 ? blocks_.Head(block - 1) : head;
    const bool last = block + 1 == blocks_.Count();
    const std::optional<BlockHead> after = last ? head : blocks_.Head(block + 1);
    if (!head || !before || !after) {
        return false;
    }
    from_ = head->first_time;
    until_ = !last ? after->first_time - 1 : blocks_.EndsThere() ? Limits::max() : head->last_time;
    next_from_ = block > 0 ? before->last_time : Limits::min();
    return true;
}

bool LeafCursor::ReadEvents(const BlockView& view) {
    ChannelState state;
    events_.clear();
    if (!view.StartOf(number_, state)) {
        return false;
    }
    const std::uint32_t bit = ElementBit(element_, count_);
    before_ = (state.known & bit) != 0 ? std::optional(state.values[element_]) : std::nullopt;
    bool rising = true;
    const auto add = [&](std::uint32_t moment, std::uint32_t mask) {
        if ((mask & bit) != 0) {
            const std::int64_t time = view.MomentTime(moment);
            rising = rising && time >= (events_.empty() ? from_ : events_.back().time);
            events_.push_back({time, state.values[element_]});
        }
        return rising;
    };
    return ReadColumn(view.ColumnOf(number_), state, count_, view.moments(), true, add);
}

// Returns the number of events at or before a time. For rising times the answer is that of the last
// question or the next one, so these are tried before the bisection.
std::size_t LeafCursor::CountUpTo(std::int64_t time) noexcept {
    const auto is_answer = [&](std::size_t count) {
        return count <= events_.size() && (count == 0 || events_[count - 1].time <= time) &&
               (count == events_.size() || events_[count].time > time);
    };
    if (!is_answer(hint_) && !is_answer(++hint_)) {
        const auto found =
            std::upper_bound(events_.begin(), events_.end(), time,
                             [](std::int64_t t, const Event& event) { return t < event.time; });
        hint_ = static_cast<std::size_t>(found - events_.begin());
    }
    return hint_;
}

}  // namespace corv::recording
