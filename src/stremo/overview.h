#pragma once

#include <cstdint>
#include <span>

#include "corv/stremo/stream_overview.h"
#include "stremo/block_store.h"
#include "stremo/signal_table.h"

namespace corv::recording {

// Does the work of ReadStreamOverview on blocks: reads each block once, channel by channel, without
// putting its events in order. Returns false, with the stream error set, if they cannot be read.
// Throws std::bad_alloc.
bool ReadOverview(BlockStore& blocks, const SignalTable& signals, std::span<const int> handles,
                  std::span<const std::int64_t> borders, IStreamOverview& overview);

}  // namespace corv::recording
