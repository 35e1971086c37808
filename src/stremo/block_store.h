#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <span>
#include <vector>

// Where the changes of a recording lie: a sequence of blocks in order of time, each of which stands
// for itself (block_layout.h). Blocks lie in a file or in memory; whoever asks for them does not
// see where.
namespace corv::recording {

using Bytes = std::span<const unsigned char>;

// What is known of a block without its content. A block has at least one event, and no event before
// the last one of the block in front of it.
struct BlockHead {
    std::int64_t first_time;
    std::int64_t last_time;
    std::uint64_t events;
};

// Where a BlockBuilder puts its blocks.
class BlockSink {
public:
    virtual ~BlockSink() = default;
    // `front` is the length of the block's front. False when the block can't be kept; the reason is
    // in the stream error then.
    virtual bool Put(const BlockHead& head, Bytes content, std::size_t front) = 0;
};

// Questions fail when the file is damaged; the stream error then says where.
class BlockStore {
public:
    virtual ~BlockStore() = default;

    virtual std::size_t Count() const noexcept = 0;
    virtual std::optional<BlockHead> Head(std::size_t block) = 0;
    // The content, which stays where it is as long as the store lives. The front has been checked
    // against its checksum, if it comes from a file.
    virtual std::optional<Bytes> Content(std::size_t block) = 0;
    // Says that the content of a block is damaged, in the stream error.
    virtual void Blame(std::size_t block) = 0;
    // Whether the recording ends behind the last block. False when what stands there is damaged;
    // BlameEnd says so in the stream error.
    virtual bool EndsThere() const noexcept { return true; }
    virtual void BlameEnd() {}
    // All events; those of the blocks that are known, should the file be damaged.
    virtual std::uint64_t EventCount() = 0;

    // The first block whose last event is at or after a time, Count() when there is none; nothing
    // on failure.
    std::optional<std::size_t> FindFrom(std::int64_t time);
    // The number of blocks whose first event is at or before a time.
    std::optional<std::size_t> CountUpTo(std::int64_t time);
};

// Blocks in memory: what the readers of other formats fill through a BlockBuilder.
class MemoryBlocks final : public BlockStore, public BlockSink {
public:
    bool Put(const BlockHead& head, Bytes content, std::size_t front) override;

    std::size_t Count() const noexcept override { return heads_.size(); }
    std::optional<BlockHead> Head(std::size_t block) override { return heads_[block]; }
    std::optional<Bytes> Content(std::size_t block) override { return contents_[block]; }
    void Blame(std::size_t block) override;
    std::uint64_t EventCount() override { return events_; }

    // The bytes that the blocks take.
    std::size_t bytes() const noexcept { return bytes_; }

private:
    std::vector<BlockHead> heads_;
    std::deque<std::vector<unsigned char>> contents_;
    std::uint64_t events_ = 0;
    std::size_t bytes_ = 0;
};

}  // namespace corv::recording
