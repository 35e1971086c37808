#include "stremo/block_builder.h"

#include <algorithm>
#include <bit>
#include <numeric>

#include "stremo/channel_code.h"
#include "stremo/checksum.h"

namespace corv::recording {
namespace {

// A search reads at most one block, so blocks should be small; but each has the values of all
// channels at its start, so with many channels small blocks would be mostly starting values. Two
// changes per channel balance the two.
constexpr std::size_t kLeastBlock = 4096;
constexpr std::size_t kLargestBlock = std::size_t{1} << 22;

std::size_t BlockSize(const SignalTable& signals) noexcept {
    return std::clamp(std::size_t{2} * signals.channel_count(), kLeastBlock, kLargestBlock);
}

unsigned NumberWidth(std::uint64_t greatest) noexcept {
    return greatest <= 0xFF ? 1 : greatest <= 0xFFFF ? 2 : greatest <= 0xFFFFFFFF ? 4 : 8;
}

template <class... Parts>
void Join(std::vector<unsigned char>& whole, const Parts&... parts) {
    (whole.insert(whole.end(), parts.begin(), parts.end()), ...);
}

}  // namespace

BlockBuilder::BlockBuilder(const SignalTable& signals, BlockSink& sink, EventOrder order,
                           std::size_t block_changes)
    : signals_(signals),
      sink_(sink),
      order_(order),
      most_changes_(block_changes != 0 ? block_changes : BlockSize(signals)),
      leaf_values_(signals.leaf_count()),
      known_(signals.channel_count()),
      latest_(signals.leaf_count(), -1),
      column_ends_(signals.channel_count()) {}

// ---- collecting ----

// Returns whether an event of that element can join the last change: it must come after the
// elements already in it (a lower bit), so that the order of events is kept.
bool BlockBuilder::Joins(std::uint32_t channel, std::uint32_t bit) const noexcept {
    if (changes_.empty()) {
        return false;
    }
    const Change& last = changes_.back();
    return last.channel == channel && last.values != kFlipped && moments_.back() == time_ &&
           bit < (last.mask & (0 - last.mask));
}

bool BlockBuilder::MakeRoom() {
    if (changes_.size() >= most_changes_ && !Pack()) {
        return false;
    }
    if (moments_.empty() || moments_.back() != time_) {
        moments_.push_back(time_);
    }
    return !failed_;
}

void BlockBuilder::AddChange(std::uint32_t channel, std::uint32_t mask, std::uint32_t values) {
    changes_.push_back({channel, static_cast<std::uint32_t>(moments_.size()) - 1, mask, values});
}

bool BlockBuilder::Set(std::uint32_t leaf, std::uint64_t value) {
    const std::uint32_t number = signals_.LeafChannel(leaf);
    const Channel& channel = signals_.channel(number);
    const std::uint32_t bit = ElementBit(leaf - channel.first_leaf, channel.count);
    if (channel.count > 1 && Joins(number, bit)) {
        values_.push_back(value);
        changes_.back().mask |= bit;
        ++events_;
        return true;
    }
    if (!MakeRoom()) {
        return false;
    }
    values_.push_back(value);
    AddChange(number, bit, static_cast<std::uint32_t>(values_.size()) - 1);
    ++events_;
    return true;
}

bool BlockBuilder::Toggle(std::uint32_t channel, std::uint32_t mask) {
    if (!MakeRoom()) {
        return false;
    }
    AddChange(channel, mask, kFlipped);
    const bool single = (mask & (mask - 1)) == 0;
    events_ += single ? 1 : static_cast<unsigned>(std::popcount(mask));
    return true;
}

bool BlockBuilder::SetElements(std::uint32_t channel, std::uint32_t mask,
                               const std::uint64_t* values) {
    if (!MakeRoom()) {
        return false;
    }
    const auto place = static_cast<std::uint32_t>(values_.size());
    const auto count = static_cast<std::size_t>(std::popcount(mask));
    for (std::size_t i = 0; i < count; ++i) {
        values_.push_back(values[i]);
    }
    AddChange(channel, mask, place);
    events_ += count;
    return true;
}

bool BlockBuilder::Flush() {
    return !failed_ && (changes_.empty() || Pack());
}

// ---- packing ----

bool BlockBuilder::Pack() {
    failed_ = true;  // until packing has succeeded; a second attempt would advance the values twice
    SortByChannel();
    CountChanges();
    PackOrder();
    PackMoments();
    PackChannels();
    JoinParts();
    failed_ = !sink_.Put({moments_.front(), moments_.back(), events_}, parts_.whole, parts_.front);
    Forget();
    return !failed_;
}

void BlockBuilder::Forget() noexcept {
    changes_.clear();
    values_.clear();
    moments_.clear();
    events_ = 0;
}

void BlockBuilder::SortByChannel() {
    std::fill(column_ends_.begin(), column_ends_.end(), 0);
    for (const Change& change : changes_) {
        ++column_ends_[change.channel];
    }
    std::exclusive_scan(column_ends_.begin(), column_ends_.end(), column_ends_.begin(), 0U);
    sorted_.resize(changes_.size());
    for (std::uint32_t i = 0; i < changes_.size(); ++i) {
        sorted_[column_ends_[changes_[i].channel]++] = i;
    }
    // Each start has become the end of its column. This counting sort is linear and stable, and its
    // result is needed for packing by channel anyway.
}

bool BlockBuilder::InOrder() const noexcept {
    return std::is_sorted(changes_.begin(), changes_.end(), [](const Change& a, const Change& b) {
        return a.moment == b.moment && a.channel < b.channel;
    });
}

void BlockBuilder::PackOrder() {
    parts_.order.clear();
    if (order_ == EventOrder::kBySignal || InOrder()) {
        return;
    }
    const unsigned width = NumberWidth(*std::max_element(counts_.begin(), counts_.end()) - 1);
    std::vector<std::uint32_t> begins(counts_.size());
    std::exclusive_scan(counts_.begin(), counts_.end(), begins.begin(), 0U);
    // Walking the changes by channel, each notes the place that it had among the changes of its
    // moment.
    std::vector<std::uint32_t> next = begins;
    std::vector<std::uint32_t> places(changes_.size());
    for (const std::uint32_t i : sorted_) {
        const std::uint32_t moment = changes_[i].moment;
        places[next[moment]++] = i - begins[moment];
    }
    ByteWriter out(parts_.order);
    out.Number(std::uint64_t{0});
    out.Byte(width);
    for (const std::uint32_t place : places) {
        out.Number(place, width);
    }
    StoreNumber(parts_.order.data(), Checksum(Bytes(parts_.order).subspan(8), 0));
}

void BlockBuilder::CountChanges() {
    counts_.assign(moments_.size(), 0);
    for (const Change& change : changes_) {
        ++counts_[change.moment];
    }
}

void BlockBuilder::PackMoments() {
    // Times are stored as multiples of their greatest common divisor: a clocked design then needs
    // one byte per moment, whatever its unit of time is.
    std::uint64_t step = 0;
    for (std::size_t i = 1; i < moments_.size(); ++i) {
        step = std::gcd(step, static_cast<std::uint64_t>(moments_[i] - moments_[i - 1]));
    }
    step = std::max<std::uint64_t>(step, 1);
    const auto steps = [&](std::int64_t time) {
        return static_cast<std::uint64_t>(time - moments_.front()) / step;
    };
    const unsigned width = NumberWidth(steps(moments_.back()));
    const bool single = moments_.size() == changes_.size();
    const unsigned count_width =
        single ? 0 : NumberWidth(*std::max_element(counts_.begin(), counts_.end()));
    parts_.moments.clear();
    ByteWriter out(parts_.moments);
    out.Number(step);
    out.Byte(width);
    out.Byte(count_width);
    for (const std::int64_t moment : moments_) {
        out.Number(steps(moment), width);
    }
    for (std::size_t i = 0; i < moments_.size() && !single; ++i) {
        out.Number(counts_[i], count_width);
    }
}

// Packs the values at the block's start and the columns, which turn them into the values at the
// start of the next block.
void BlockBuilder::PackChannels() {
    parts_.groups.clear();
    parts_.starting_values.clear();
    parts_.columns.clear();
    column_starts_.clear();
    for (std::uint32_t i = 0; i < signals_.channel_count(); i += kGroupChannels) {
        PackGroup(i, std::min(i + kGroupChannels, signals_.channel_count()));
    }
}

void BlockBuilder::PackGroup(std::uint32_t first, std::uint32_t end) {
    const std::uint64_t used = UsedChannels(first, end);
    const std::size_t columns = parts_.columns.size();
    ByteWriter group(parts_.groups);
    group.Number(used);
    group.Number(static_cast<std::uint32_t>(column_starts_.size()));
    group.Number(static_cast<std::uint32_t>(parts_.starting_values.size()));
    ByteWriter starting(parts_.starting_values);
    ChannelState state;
    for (std::uint32_t i = first; i < end; ++i) {
        const Channel& channel = signals_.channel(i);
        state.known = known_[i];
        std::copy_n(&leaf_values_[channel.first_leaf], channel.count, state.values);
        WriteStart(starting, state, channel.count);
        if ((used >> (i - first) & 1) != 0) {
            column_starts_.push_back(static_cast<std::uint32_t>(parts_.columns.size()));
            PackColumn(i, channel, state);
            known_[i] = state.known;
            std::copy_n(state.values, channel.count, &leaf_values_[channel.first_leaf]);
        }
    }
    group.Number(Checksum(Bytes(parts_.columns).subspan(columns), 0));
}

// Returns which channels of a group change.
std::uint64_t BlockBuilder::UsedChannels(std::uint32_t first, std::uint32_t end) const noexcept {
    std::uint64_t used = 0;
    for (std::uint32_t i = first; i < end; ++i) {
        used |= std::uint64_t{ColumnBegin(i) != column_ends_[i]} << (i - first);
    }
    return used;
}

void BlockBuilder::PackColumn(std::uint32_t number, const Channel& channel, ChannelState& state) {
    std::uint32_t at = ColumnBegin(number);
    const std::uint32_t end = column_ends_[number];
    for (std::uint32_t moment = 0; at < end;) {
        at = PackFlips(at, end, channel, state, moment);
        if (at < end) {
            PackChange(changes_[sorted_[at++]], channel, state, moment);
        }
    }
    NoteLatest(number, channel);
}

// Packs the changes that only flip elements, up to the first other change, whose place it returns.
// Room for all of them is made at once and the state is updated at the end from the parity of
// flips, so that the loop does nothing but write: most changes of a recording pass through here.
std::uint32_t BlockBuilder::PackFlips(std::uint32_t at, std::uint32_t end, const Channel& channel,
                                      ChannelState& state, std::uint32_t& moment) {
    constexpr std::size_t kMostBytes = 10;  // of a change
    std::uint32_t last = at;
    while (last < end && Flips(changes_[sorted_[last]], state)) {
        ++last;
    }
    const std::size_t used = parts_.columns.size();
    parts_.columns.resize(used + kMostBytes * (last - at));
    unsigned char* to = parts_.columns.data() + used;
    std::uint32_t parity = 0;
    for (; at < last; ++at) {
        const Change& change = changes_[sorted_[at]];
        to = StoreVariable(to, std::uint64_t{change.moment - moment} << 2 | kFlips);
        to = channel.count > 1 ? StoreVariable(to, change.mask) : to;
        moment = change.moment;
        parity ^= change.mask;
    }
    parts_.columns.resize(static_cast<std::size_t>(to - parts_.columns.data()));
    ForElements(parity, channel.count, [&](unsigned i) { state.values[i] ^= 1; });
    return at;
}

void BlockBuilder::PackChange(const Change& change, const Channel& channel, ChannelState& state,
                              std::uint32_t& moment) {
    ByteWriter out(parts_.columns);
    std::uint64_t flipped[kMostElements];
    const std::uint64_t* values = flipped;
    if (change.values == kFlipped) {
        std::uint64_t* next = flipped;
        ForElements(change.mask, channel.count, [&](unsigned i) { *next++ = state.values[i] ^ 1; });
    } else {
        values = &values_[change.values];
    }
    WriteChange(out, state, channel.count, change.moment - moment, change.mask, values);
    moment = change.moment;
}

void BlockBuilder::NoteLatest(std::uint32_t number, const Channel& channel) noexcept {
    // Backwards, until each element has been seen once.
    std::uint32_t left = AllElements(channel.count);
    for (std::uint32_t at = column_ends_[number]; at > ColumnBegin(number) && left != 0; --at) {
        const Change& change = changes_[sorted_[at - 1]];
        ForElements(change.mask & left, channel.count,
                    [&](unsigned i) { latest_[channel.first_leaf + i] = moments_[change.moment]; });
        left &= ~change.mask;
    }
}

void BlockBuilder::JoinParts() {
    const std::size_t columns = parts_.columns.size();
    parts_.column_starts.clear();
    ByteWriter starts(parts_.column_starts);
    for (const std::uint32_t start : column_starts_) {
        starts.Number(start, ColumnStartWidth(columns));
    }
    parts_.whole.clear();
    ByteWriter header(parts_.whole);
    for (const std::size_t number : {std::size_t{signals_.channel_count()}, column_starts_.size(),
                                     changes_.size(), moments_.size(), parts_.moments.size(),
                                     parts_.starting_values.size(), columns, parts_.order.size()}) {
        header.Number(static_cast<std::uint32_t>(number));
    }
    Join(parts_.whole, parts_.groups, parts_.column_starts, parts_.moments, parts_.starting_values);
    parts_.front = parts_.whole.size();
    Join(parts_.whole, parts_.columns, parts_.order);
}

}  // namespace corv::recording
