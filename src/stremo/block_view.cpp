#include "stremo/block_view.h"

#include <algorithm>
#include <bit>

#include "stremo/checksum.h"

namespace corv::recording {
namespace {

bool IsWidth(unsigned width) noexcept {
    return width <= 8 && std::has_single_bit(width);
}

Bytes TakePart(ByteReader& in, std::size_t length) noexcept {
    const unsigned char* const part = in.Take(length);
    return part != nullptr ? Bytes(part, length) : Bytes();
}

}  // namespace

std::optional<BlockView> BlockView::Open(Bytes content, const BlockHead& head,
                                         const SignalTable& signals) noexcept {
    BlockView view;
    view.signals_ = &signals;
    ByteReader in(content);
    const auto channels = in.Number<std::uint32_t>();
    view.used_ = in.Number<std::uint32_t>();
    view.changes_ = in.Number<std::uint32_t>();
    view.moments_ = in.Number<std::uint32_t>();
    std::uint32_t lengths[4];
    for (std::uint32_t& length : lengths) {
        length = in.Number<std::uint32_t>();
    }
    if (channels != signals.channel_count() || view.used_ > channels) {
        return std::nullopt;
    }
    view.groups_ = in.Take(GroupCount(channels) * kGroupSize);
    view.column_starts_ = in.Take(std::size_t{view.used_} * ColumnStartWidth(lengths[2]));
    const Bytes moments = TakePart(in, lengths[0]);
    view.starting_values_ = TakePart(in, lengths[1]);
    view.columns_ = TakePart(in, lengths[2]);
    view.order_ = TakePart(in, lengths[3]);
    const bool whole = in.ok() && in.AtEnd() && view.changes_ <= view.columns_.size();
    return whole && view.OpenMoments(moments, head) ? std::optional(view) : std::nullopt;
}

// That the moments rise in between is looked at only when they are read.
bool BlockView::OpenMoments(Bytes part, const BlockHead& head) noexcept {
    ByteReader in(part);
    step_ = in.Number<std::uint64_t>();
    moment_width_ = in.Number<std::uint8_t>();
    count_width_ = in.Number<std::uint8_t>();
    if (!IsWidth(moment_width_) || !(count_width_ == 0 || IsWidth(count_width_)) || moments_ == 0 ||
        moments_ > changes_ || (count_width_ == 0 && moments_ != changes_) ||
        in.left() != std::size_t{moments_} * (moment_width_ + count_width_) ||
        head.first_time < 0 || head.last_time < head.first_time) {
        return false;
    }
    moment_steps_ = in.Take(std::size_t{moments_} * moment_width_);
    moment_counts_ = in.Take(in.left());
    first_time_ = static_cast<std::uint64_t>(head.first_time);
    const std::uint64_t span = static_cast<std::uint64_t>(head.last_time) - first_time_;
    const std::uint64_t last = StepsTo(moments_ - 1);
    return StepsTo(0) == 0 && (last == 0 ? span == 0 : span / last == step_ && span % last == 0);
}

std::uint32_t BlockView::FindMoment(std::int64_t time) const noexcept {
    const auto first = static_cast<std::int64_t>(first_time_);
    if (time <= first) {
        return 0;
    }
    const std::uint64_t steps = (static_cast<std::uint64_t>(time - first) - 1) / step_ + 1;
    std::uint32_t low = 0;
    std::uint32_t high = moments_;
    while (low < high) {
        const std::uint32_t middle = low + (high - low) / 2;
        if (StepsTo(middle) < steps) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    return low;
}

std::optional<BlockView> OpenBlock(BlockStore& blocks, std::size_t number,
                                   const SignalTable& signals) {
    const std::optional<Bytes> content = blocks.Content(number);
    const std::optional<BlockHead> head = content ? blocks.Head(number) : std::nullopt;
    if (!head) {
        return std::nullopt;
    }
    std::optional<BlockView> view = BlockView::Open(*content, *head, signals);
    if (!view) {
        blocks.Blame(number);
    }
    return view;
}

// ---- channels ----

ByteReader BlockView::StartsOf(const Group& group) const noexcept {
    if (group.starting_values > starting_values_.size()) {
        return ByteReader();
    }
    return ByteReader(starting_values_.subspan(group.starting_values));
}

bool BlockView::StartOf(std::uint32_t channel, ChannelState& state) const noexcept {
    // Starting values have different lengths, so those before it in the group are skipped: at most
    // 63.
    ByteReader in = StartsOf(GroupOf(channel));
    for (std::uint32_t i = channel - channel % kGroupChannels; i < channel; ++i) {
        if (!SkipStart(in, signals_->channel(i).count)) {
            return false;
        }
    }
    return ReadStart(in, state, signals_->channel(channel).count);
}

ByteReader BlockView::ColumnOf(std::uint32_t channel) const noexcept {
    const Group group = GroupOf(channel);
    const std::uint64_t bit = std::uint64_t{1} << (channel % kGroupChannels);
    if ((group.used & bit) == 0) {
        return ByteReader();
    }
    if (!AreColumnsWhole(group)) {
        return ByteReader::Failed();
    }
    const auto within = static_cast<std::uint32_t>(std::popcount(group.used & (bit - 1)));
    const Bytes column = Columns(group.before + within, 1);
    return column.empty() ? ByteReader::Failed() : ByteReader(column);
}

bool BlockView::AreColumnsWhole(const Group& group) const noexcept {
    const auto count = static_cast<std::uint32_t>(std::popcount(group.used));
    return Checksum(Columns(group.before, count), 0) == group.checksum;
}

std::size_t BlockView::ColumnStart(std::uint32_t number) const noexcept {
    if (number >= used_) {
        return columns_.size();
    }
    return ColumnStartWidth(columns_.size()) == 2
               ? LoadNumber<std::uint16_t>(column_starts_ + std::size_t{2} * number)
               : LoadNumber<std::uint32_t>(column_starts_ + std::size_t{4} * number);
}

// Returns the bytes of neighbouring columns; none if their starts make no sense.
Bytes BlockView::Columns(std::uint32_t first, std::uint32_t count) const noexcept {
    if (first > used_ || count > used_ - first) {
        return {};
    }
    const std::size_t begin = ColumnStart(first);
    const std::size_t end = ColumnStart(first + count);
    return begin <= end && end <= columns_.size() ? columns_.subspan(begin, end - begin) : Bytes();
}

std::optional<BlockOrder> BlockView::Order() const noexcept {
    if (order_.empty()) {
        return BlockOrder{};
    }
    ByteReader in(order_);
    const auto checksum = in.Number<std::uint64_t>();
    BlockOrder order;
    order.width = in.Number<std::uint8_t>();
    const bool fits = IsWidth(order.width) && in.left() == std::size_t{changes_} * order.width;
    order.places = in.Take(in.left());
    return fits && Checksum(order_.subspan(sizeof checksum), 0) == checksum ? std::optional(order)
                                                                            : std::nullopt;
}

// ---- events in order ----

bool BlockEvents::Read(const BlockView& view, const SignalTable& signals) {
    changes_.assign(view.changes(), {0, 0, 0});
    if (!ReadMoments(view) || !ReadColumns(view, signals)) {
        Clear();
        return false;
    }
    return true;
}

bool BlockEvents::ReadMoments(const BlockView& view) {
    begins_.resize(std::size_t{view.moments()} + 1);
    times_.resize(view.moments());
    std::uint64_t begin = 0;
    for (std::uint32_t i = 0; i < view.moments(); ++i) {
        const std::uint64_t count = view.ChangesAt(i);
        times_[i] = view.MomentTime(i);
        begins_[i] = static_cast<std::uint32_t>(begin);
        if (count == 0 || count > view.changes() - begin || (i > 0 && times_[i] <= times_[i - 1])) {
            return false;
        }
        begin += count;
    }
    begins_.back() = view.changes();
    next_.assign(begins_.begin(), begins_.end());
    return begin == view.changes();
}

// Puts each change in its place. If there are exactly as many changes as places and no place is
// taken twice, every place is taken in the end: that is all a hostile order has to be checked for.
bool BlockEvents::ReadColumns(const BlockView& view, const SignalTable& signals) {
    element_values_.clear();
    std::uint32_t left = view.changes();
    const std::optional<BlockOrder> order = view.Order();
    if (!order) {
        return false;
    }
    const auto place = [&](std::uint32_t moment) -> Change* {
        std::size_t at = next_[moment]++;
        if (at >= begins_[moment + 1]) {
            return nullptr;
        }
        if (order->width != 0) {
            at = begins_[moment] + LoadWidth(order->places, order->width, at);
        }
        --left;
        return at < begins_[moment + 1] && changes_[at].mask == 0 ? &changes_[at] : nullptr;
    };
    const bool read = view.ForChangingChannels(
        [&](std::uint32_t channel, ChannelState& state, ByteReader column) {
            const unsigned count = signals.channel(channel).count;
            const auto add = [&](std::uint32_t moment, std::uint32_t mask) {
                Change* const change = place(moment);
                if (change == nullptr) {
                    return false;
                }
                *change = {channel, mask, count == 1 ? state.values[0] : element_values_.size()};
                if (count > 1) {
                    ForElements(mask, count,
                                [&](unsigned i) { element_values_.push_back(state.values[i]); });
                }
                return true;
            };
            return ReadColumn(column, state, count, view.moments(), true, add);
        });
    return read && left == 0;
}

}  // namespace corv::recording
