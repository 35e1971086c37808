#include "stremo/shared_recording.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "platform/guard.h"
#include "stremo/stream_error.h"

namespace corv::recording {
namespace {

// After two partial readings the next one reads everything: a user who looks at one signal after
// another should not have the file read for each.
constexpr int kPartialReadings = 2;

Leaves Union(const Leaves& a, const Leaves& b) {
    Leaves both;
    std::set_union(a.begin(), a.end(), b.begin(), b.end(), std::back_inserter(both));
    return both;
}

}  // namespace

void SharedRecording::Announce(const Leaves& leaves) {
    announced_ = Union(announced_, leaves);
}

bool SharedRecording::Holds(const Leaves& leaves) const noexcept {
    return blocks_ != nullptr &&
           (held_.empty() || (!leaves.empty() && std::includes(held_.begin(), held_.end(),
                                                               leaves.begin(), leaves.end())));
}

void SharedRecording::Read(Leaves leaves) {
    std::shared_ptr<BlockStore> blocks = recording_->OpenBlocks(leaves);
    if (blocks != nullptr) {
        blocks_ = std::move(blocks);
        held_ = recording_->LeavesOut() ? std::move(leaves) : Leaves();
        ++readings_;
    }
}

std::shared_ptr<BlockStore> SharedRecording::Blocks(const Leaves& leaves) noexcept {
    if (!Holds(leaves)) {
        const bool all = leaves.empty() || readings_ >= kPartialReadings;
        if (!platform::Done([&] { Read(all ? Leaves() : Union(announced_, leaves)); })) {
            SetError(recording_->file_name(), "out of memory");
        }
    }
    return Holds(leaves) ? blocks_ : nullptr;
}

}  // namespace corv::recording
