#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "stremo/recording.h"

namespace corv::recording {

// Numbers of leaves in rising order, without duplicates. As an interest, an empty list means all.
using Leaves = std::vector<std::uint32_t>;

// What the readers of one recording share: the recording, and its changes as far as they have been
// needed.
class SharedRecording {
public:
    explicit SharedRecording(std::unique_ptr<Recording> recording) noexcept
        : recording_(std::move(recording)) {}

    Recording& recording() const noexcept { return *recording_; }

    // Announces leaves that some reader is going to need, so that reading the file once serves all
    // readers. Throws std::bad_alloc, with nothing announced.
    void Announce(const Leaves& leaves);

    // Returns changes that include those of the leaves. If leaves are missing from what was read
    // before, the file is read anew; users of the old blocks keep them. Returns null, with the
    // stream error set, on failure.
    std::shared_ptr<BlockStore> Blocks(const Leaves& leaves) noexcept;

private:
    bool Holds(const Leaves& leaves) const noexcept;
    void Read(Leaves leaves);

    const std::unique_ptr<Recording> recording_;
    Leaves announced_;
    std::shared_ptr<BlockStore> blocks_;
    Leaves held_;  // the leaves in blocks_
    int readings_ = 0;
};

}  // namespace corv::recording
