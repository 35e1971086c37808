#include "stremo/block_store.h"

#include "stremo/stream_error.h"

namespace corv::recording {
namespace {

// Returns the first block for which `holds` is false; it must be true for all blocks before.
// Returns nullopt if a head cannot be read.
template <class Holds>
std::optional<std::size_t> Bisect(BlockStore& store, Holds holds) {
    std::size_t low = 0;
    std::size_t high = store.Count();
    while (low < high) {
        const std::size_t middle = low + (high - low) / 2;
        const std::optional<BlockHead> head = store.Head(middle);
        if (!head) {
            return std::nullopt;
        }
        if (holds(*head)) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    return low;
}

}  // namespace

std::optional<std::size_t> BlockStore::FindFrom(std::int64_t time) {
    return Bisect(*this, [time](const BlockHead& head) { return head.last_time < time; });
}

std::optional<std::size_t> BlockStore::CountUpTo(std::int64_t time) {
    return Bisect(*this, [time](const BlockHead& head) { return head.first_time <= time; });
}

bool MemoryBlocks::Put(const BlockHead& head, Bytes content, std::size_t) {
    contents_.emplace_back(content.begin(), content.end());
    heads_.push_back(head);
    events_ += head.events;
    bytes_ += content.size();
    return true;
}

void MemoryBlocks::Blame(std::size_t) {
    SetError({}, "the recording in memory is damaged");
}

}  // namespace corv::recording
