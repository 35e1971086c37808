#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <span>
#include <vector>

// The changes of a recording: a sequence of blocks in order of time, each of which can be read on
// its own (block_layout.h). Blocks are in a file or in memory; their users cannot tell.
namespace corv::recording {

using Bytes = std::span<const unsigned char>;

// What is known of a block without its content. A block has at least one event, and none of its
// events is before the last event of the previous block.
struct BlockHead {
    std::int64_t first_time;
    std::int64_t last_time;
    std::uint64_t events;
};

// Receives the blocks of a BlockBuilder.
class BlockSink {
public:
    virtual ~BlockSink() = default;
    // `front` is the length of the block's front. Returns false, with the stream error set, if the
    // block cannot be kept.
    virtual bool Put(const BlockHead& head, Bytes content, std::size_t front) = 0;
};

// Questions fail if the file is damaged; the stream error then says where.
class BlockStore {
public:
    virtual ~BlockStore() = default;

    virtual std::size_t Count() const noexcept = 0;
    virtual std::optional<BlockHead> Head(std::size_t block) = 0;
    // Returns the content, whose address does not change as long as the store lives. The front of a
    // block from a file has been checked against its checksum.
    virtual std::optional<Bytes> Content(std::size_t block) = 0;
    // Sets the stream error: the content of the block is damaged.
    virtual void Blame(std::size_t block) = 0;
    // Returns whether the recording really ends after the last block; false if what follows is
    // damaged, which BlameEnd puts into the stream error.
    virtual bool EndsThere() const noexcept { return true; }
    virtual void BlameEnd() {}
    // Returns the number of all events; in a damaged file, of those in the known blocks.
    virtual std::uint64_t EventCount() = 0;

    // Returns the first block whose last event is at or after a time, Count() if there is none, and
    // nullopt on failure.
    std::optional<std::size_t> FindFrom(std::int64_t time);
    // Returns the number of blocks whose first event is at or before a time.
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

    // The size of all blocks in bytes.
    std::size_t bytes() const noexcept { return bytes_; }

private:
    std::vector<BlockHead> heads_;
    std::deque<std::vector<unsigned char>> contents_;
    std::uint64_t events_ = 0;
    std::size_t bytes_ = 0;
};

}  // namespace corv::recording
