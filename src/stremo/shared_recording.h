#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "stremo/recording.h"

namespace corv::recording {

// Numbers of leaves in rising order, each once. Where they tell what is of interest, none stands
// for all.
using Leaves = std::vector<std::uint32_t>;

// What the readers of one recording share: the recording, and its changes as far as they have been
// asked for.
class SharedRecording {
public:
    explicit SharedRecording(std::unique_ptr<Recording> recording) noexcept
        : recording_(std::move(recording)) {}

    Recording& recording() const noexcept { return *recording_; }

    // Tells leaves that some reader is going to ask for, so that one reading serves all readers.
    // Without memory (std::bad_alloc) nothing is told.
    void Announce(const Leaves& leaves);

    // Changes that hold those of the leaves. What was read before is given up when leaves are
    // missing there; who holds it keeps it. Null on failure, with the stream error set.
    std::shared_ptr<BlockStore> Blocks(const Leaves& leaves) noexcept;

private:
    bool Holds(const Leaves& leaves) const noexcept;
    void Read(Leaves leaves);

    const std::unique_ptr<Recording> recording_;
    Leaves announced_;
    std::shared_ptr<BlockStore> blocks_;
    Leaves held_;  // by blocks_
    int readings_ = 0;
};

}  // namespace corv::recording
