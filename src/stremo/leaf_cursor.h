#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <vector>

#include "stremo/block_view.h"
#include "stremo/signal_cursor.h"

namespace corv::recording {

// The cursor over blocks. It keeps the events that its leaf has in one block; only a question that
// these cannot answer goes to another block. A block in which the leaf's channel does not change is
// skipped after a look at one bit.
class LeafCursor final : public SignalCursor {
public:
    LeafCursor(std::shared_ptr<BlockStore> blocks, const SignalTable& signals,
               std::uint32_t leaf) noexcept;

    std::int64_t NextTime(std::int64_t time) override;
    bool Value(std::int64_t time, void* value) override;
    std::int64_t LastTime() override;

private:
    struct Event {
        std::int64_t time;
        std::uint64_t value;
    };
    using Limits = std::numeric_limits<std::int64_t>;

    bool Load(std::size_t block);
    bool LoadSpan(std::size_t block);
    bool ReadEvents(const BlockView& view);
    std::int64_t SearchFrom(std::size_t block, std::int64_t time);
    bool LoadAround(std::int64_t time);
    std::size_t CountUpTo(std::int64_t time) noexcept;

    const std::shared_ptr<BlockStore> held_blocks_;
    BlockStore& blocks_;
    const SignalTable& signals_;
    const std::uint32_t number_;  // of the channel
    const unsigned count_;
    const unsigned element_;

    // from the block that was read: the events of the leaf, and the value before them
    bool loaded_ = false;
    std::vector<Event> events_;
    std::optional<std::uint64_t> before_;
    std::size_t hint_ = 0;  // the last answer of CountUpTo

    // For which times these events are the answer, so that a walk need not search for its block
    // again. Values are known for times from_ to until_: up to the next block, in which the value
    // may change. The next event is known for times from next_from_ on, as long as one of the
    // events is later: next_from_ may be before from_, since blocks without the leaf were skipped.
    // No event is after nothing_from_, so that a replay that has ended does not search the rest of
    // the file again and again.
    std::int64_t from_ = 0;
    std::int64_t until_ = 0;
    std::int64_t next_from_ = 0;
    std::int64_t nothing_from_ = Limits::max();
    std::size_t block_ = 0;
};

}  // namespace corv::recording
