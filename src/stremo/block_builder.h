#pragma once

#include <cstdint>
#include <vector>

#include "stremo/block_layout.h"
#include "stremo/block_store.h"
#include "stremo/signal_table.h"

namespace corv::recording {

// Collects changes in order of time, packs them into blocks and hands these to a sink. The writer
// of event files and the readers of other formats use it alike:
//
//     SignalTable signals;
//     ... signals.Add(...); signals.Finish();
//     auto blocks = std::make_unique<MemoryBlocks>();
//     BlockBuilder builder(signals, *blocks, EventOrder::kBySignal);
//     builder.SetTime(5000);
//     builder.Set(leaf, 3);                 // a scalar, or one element of a vector
//     builder.Toggle(channel, 0b0110);      // two elements of a vector, '0' <-> '1'
//     builder.Flush();
//
// An event is kept even if it repeats the signal's value; callers that want to drop repeated values
// do so themselves. Memory: 16 bytes for each leaf and for each change of the block being made.
//
// Changing operations throw std::bad_alloc, after which the builder accepts nothing more.
enum class EventOrder {
    kAsWritten,  // events at one time stay in the order in which they came
    kBySignal,   // they are sorted by channel (stable within a channel), which makes blocks smaller
};

class BlockBuilder {
public:
    // The table must be finished; it and the sink must outlive the builder. A block ends after
    // `block_changes` changes; 0 means as many as suit the number of channels.
    BlockBuilder(const SignalTable& signals, BlockSink& sink, EventOrder order,
                 std::size_t block_changes = 0);
    BlockBuilder(const BlockBuilder&) = delete;
    BlockBuilder& operator=(const BlockBuilder&) = delete;

    // Sets the time of the following events in picoseconds. It must be at least 0 and not below the
    // previous time.
    void SetTime(std::int64_t time) noexcept { time_ = time; }
    std::int64_t time() const noexcept { return time_; }

    // Adds an event of one leaf, which then has the value. Consecutive events of elements of one
    // vector, in the order of the elements, become one change. Like all operations, returns false
    // if a full block could not be put into the sink, after which nothing more is accepted.
    bool Set(std::uint32_t leaf, std::uint64_t value);

    // Adds an event for each element of the mask, in the order of the elements: the lowest bit of
    // its value flips. For std_logic (positions 2 and 3), bit and boolean that is '0' to '1' and
    // '1' to '0'. The elements must have values, and the mask must not be 0.
    bool Toggle(std::uint32_t channel, std::uint32_t mask);

    // Adds an event for each element of the mask, with a value for each, in the order of the
    // elements.
    bool SetElements(std::uint32_t channel, std::uint32_t mask, const std::uint64_t* values);

    // Packs everything collected since the last block, if anything.
    bool Flush();

    // Returns the time of the last event of a leaf that was packed into a block, -1 if there is
    // none.
    std::int64_t Latest(std::uint32_t leaf) const noexcept { return latest_[leaf]; }

private:
    // A change of a channel: new values of the elements in the mask. `values` is the place of the
    // first one in values_, or kFlipped if only the lowest bits of the elements flip. Clocks and
    // most data do nothing else, and such a change needs neither values here nor a look at the old
    // ones.
    struct Change {
        std::uint32_t channel;
        std::uint32_t moment;
        std::uint32_t mask;
        std::uint32_t values;
    };
    static constexpr std::uint32_t kFlipped = kNone;

    bool Joins(std::uint32_t channel, std::uint32_t bit) const noexcept;
    bool MakeRoom();
    void AddChange(std::uint32_t channel, std::uint32_t mask, std::uint32_t values);

    bool Pack();
    void SortByChannel();
    void PackChannels();
    void PackGroup(std::uint32_t first, std::uint32_t end);
    std::uint64_t UsedChannels(std::uint32_t first, std::uint32_t end) const noexcept;
    void PackColumn(std::uint32_t number, const Channel& channel, ChannelState& state);
    // Whether a change can be stored as flips: elements without a value yet have nothing to flip.
    bool Flips(const Change& change, const ChannelState& state) const noexcept {
        return change.values == kFlipped && (change.mask & ~state.known) == 0;
    }
    std::uint32_t PackFlips(std::uint32_t at, std::uint32_t end, const Channel& channel,
                            ChannelState& state, std::uint32_t& moment);
    void PackChange(const Change& change, const Channel& channel, ChannelState& state,
                    std::uint32_t& moment);
    void NoteLatest(std::uint32_t number, const Channel& channel) noexcept;
    // Returns where the changes of a channel begin in sorted_.
    std::uint32_t ColumnBegin(std::uint32_t channel) const noexcept {
        return channel == 0 ? 0 : column_ends_[channel - 1];
    }
    void CountChanges();
    void PackMoments();
    bool InOrder() const noexcept;
    void PackOrder();
    void JoinParts();
    void Forget() noexcept;

    const SignalTable& signals_;
    BlockSink& sink_;
    const EventOrder order_;
    const std::size_t most_changes_;  // of a block
    std::int64_t time_ = 0;
    bool failed_ = false;

    // the block being made
    std::vector<Change> changes_;
    std::vector<std::uint64_t> values_;
    std::vector<std::int64_t> moments_;  // the times at which something changes
    std::uint64_t events_ = 0;

    // at the start of that block
    std::vector<std::uint64_t> leaf_values_;
    std::vector<std::uint32_t> known_;  // by channel: the elements that have a value
    std::vector<std::int64_t> latest_;  // by leaf

    // buffers that are kept from block to block for their memory
    std::vector<std::uint32_t> column_ends_;  // by channel, in sorted_
    std::vector<std::uint32_t> sorted_;       // the changes by channel
    std::vector<std::uint32_t> column_starts_;
    std::vector<std::uint32_t> counts_;  // by moment: the changes
    BlockParts parts_;
};

}  // namespace corv::recording
