#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "stremo/block_layout.h"
#include "stremo/block_store.h"
#include "stremo/byte_code.h"
#include "stremo/channel_code.h"
#include "stremo/signal_table.h"

namespace corv::recording {

// Returns the number at an index of a list of numbers of 1, 2, 4 or 8 bytes.
inline std::uint64_t LoadWidth(const unsigned char* numbers, unsigned width,
                               std::size_t index) noexcept {
    switch (width) {
        case 1:
            return numbers[index];
        case 2:
            return LoadNumber<std::uint16_t>(numbers + 2 * index);
        case 4:
            return LoadNumber<std::uint32_t>(numbers + 4 * index);
        default:
            return LoadNumber<std::uint64_t>(numbers + 8 * index);
    }
}

// The original order of changes. Columns have the changes of a moment in the order of their
// channels; if that was not their order, each has a place, counted within its moment. The list of
// places is ordered by moment and channel.
struct BlockOrder {
    const unsigned char* places = nullptr;
    unsigned width = 0;  // of a place; 0: there are none
};

// The content of a block, read in place. Whatever the bytes are, questions never read outside them;
// questions that find nonsense fail.
class BlockView {
public:
    // Returns nullopt if the parts do not fit the content or the recording. The content and the
    // table must outlive the view.
    static std::optional<BlockView> Open(Bytes content, const BlockHead& head,
                                         const SignalTable& signals) noexcept;

    // The moments of the block: their number, the time of one, and the first one at or after a time
    // (the number of moments if there is none).
    std::uint32_t moments() const noexcept { return moments_; }
    std::int64_t MomentTime(std::uint32_t moment) const noexcept {
        return static_cast<std::int64_t>(first_time_ + StepsTo(moment) * step_);
    }
    std::uint32_t FindMoment(std::int64_t time) const noexcept;

    // The number of changes in the block, and at a moment.
    std::uint32_t changes() const noexcept { return changes_; }
    std::uint64_t ChangesAt(std::uint32_t moment) const noexcept {
        return count_width_ == 0 ? 1 : LoadWidth(moment_counts_, count_width_, moment);
    }
    // Returns nullopt if it is damaged.
    std::optional<BlockOrder> Order() const noexcept;

    bool Changes(std::uint32_t channel) const noexcept {
        return (GroupOf(channel).used >> (channel % kGroupChannels) & 1) != 0;
    }
    // Stores the values of a channel at the block's start.
    bool StartOf(std::uint32_t channel, ChannelState& state) const noexcept;
    // Returns the changes of a channel, to be read with ReadColumn; no bytes if there are none.
    ByteReader ColumnOf(std::uint32_t channel) const noexcept;

    // Calls `action(channel, state, column)` for each channel that changes, in order, which costs
    // less than asking one by one. Returns false if `action` does or if the content is malformed.
    template <class Action>
    bool ForChangingChannels(Action action) const;

private:
    struct Group {
        std::uint64_t used;    // a bit for each channel that changes
        std::uint32_t before;  // the number of such channels in the groups before
        std::uint32_t starting_values;
        std::uint64_t checksum;  // of the columns
    };
    Group GroupAt(std::uint32_t number) const noexcept {
        const unsigned char* const bytes = groups_ + number * kGroupSize;
        return {LoadNumber<std::uint64_t>(bytes), LoadNumber<std::uint32_t>(bytes + 8),
                LoadNumber<std::uint32_t>(bytes + 12), LoadNumber<std::uint64_t>(bytes + 16)};
    }
    Group GroupOf(std::uint32_t channel) const noexcept {
        return GroupAt(channel / kGroupChannels);
    }
    std::uint64_t StepsTo(std::uint32_t moment) const noexcept {
        return LoadWidth(moment_steps_, moment_width_, moment);
    }
    std::size_t ColumnStart(std::uint32_t number) const noexcept;
    Bytes Columns(std::uint32_t first, std::uint32_t count) const noexcept;
    bool AreColumnsWhole(const Group& group) const noexcept;
    ByteReader StartsOf(const Group& group) const noexcept;
    bool OpenMoments(Bytes part, const BlockHead& head) noexcept;

    const SignalTable* signals_ = nullptr;
    const unsigned char* groups_ = nullptr;
    const unsigned char* column_starts_ = nullptr;
    const unsigned char* moment_steps_ = nullptr;
    const unsigned char* moment_counts_ = nullptr;
    Bytes starting_values_;
    Bytes columns_;
    Bytes order_;
    std::uint64_t first_time_ = 0;
    std::uint64_t step_ = 1;
    std::uint32_t used_ = 0;
    std::uint32_t changes_ = 0;
    std::uint32_t moments_ = 0;
    unsigned moment_width_ = 1;
    unsigned count_width_ = 0;
};

// Returns the view of a block of a recording; nullopt, with the stream error set, if it cannot be
// read.
std::optional<BlockView> OpenBlock(BlockStore& blocks, std::size_t number,
                                   const SignalTable& signals);

template <class Action>
bool BlockView::ForChangingChannels(Action action) const {
    ByteReader starts(starting_values_);
    ChannelState state;
    std::uint32_t column = 0;
    std::uint64_t used = 0;
    for (std::uint32_t i = 0; i < signals_->channel_count(); ++i, used >>= 1) {
        if (i % kGroupChannels == 0) {
            const Group group = GroupOf(i);
            used = group.used;
            if (group.before != column || !AreColumnsWhole(group)) {
                return false;
            }
        }
        if (!ReadStart(starts, state, signals_->channel(i).count)) {
            return false;
        }
        if ((used & 1) != 0 && !action(i, state, ByteReader(Columns(column++, 1)))) {
            return false;
        }
    }
    return column == used_ && starts.AtEnd();
}

// The events of a block in their order.
class BlockEvents {
public:
    // A change of a channel: an event for each element of the mask, in order.
    struct Change {
        std::uint32_t channel;
        std::uint32_t mask;
        std::uint64_t value;  // of a scalar; for a vector, the place of the first element's value
    };

    // Reads a block. Returns false, with the object empty, if the content is malformed. Throws
    // std::bad_alloc.
    bool Read(const BlockView& view, const SignalTable& signals);
    void Clear() noexcept { changes_.clear(); }

    std::uint32_t size() const noexcept { return static_cast<std::uint32_t>(changes_.size()); }
    const Change& operator[](std::uint32_t i) const noexcept { return changes_[i]; }
    std::uint64_t ElementValue(std::uint64_t place) const noexcept {
        return element_values_[static_cast<std::size_t>(place)];
    }
    // Where the changes of a moment begin, which is where those of the previous moment end.
    std::uint32_t Begin(std::uint32_t moment) const noexcept { return begins_[moment]; }
    std::int64_t Time(std::uint32_t moment) const noexcept { return times_[moment]; }

private:
    bool ReadMoments(const BlockView& view);
    bool ReadColumns(const BlockView& view, const SignalTable& signals);

    std::vector<Change> changes_;
    std::vector<std::uint64_t> element_values_;
    std::vector<std::uint32_t> begins_;  // by moment, and the end
    std::vector<std::uint32_t> next_;    // by moment: where the next change from the columns goes
    std::vector<std::int64_t> times_;    // by moment
};

}  // namespace corv::recording
