#pragma once

#include <cstdint>
#include <functional>
#include <span>

#include "platform/files.h"
#include "stremo/block_store.h"
#include "stremo/ghw/hierarchy.h"
#include "stremo/ghw/input.h"
#include "stremo/ghw/notes.h"
#include "stremo/ghw/time.h"
#include "stremo/signal_table.h"

// The values of a file: a snapshot of all nets, then cycles, each a list of the nets that change at
// a time. A net is told by how many places it stands behind the one before in the list.
namespace corv::ghw {

// Where the values stand and what they are to be taken for.
struct ChangeSource {
    const platform::FileContent& content;
    Bytes file;  // its bytes, or the first of them
    bool big_endian;
    std::size_t offset;  // behind the hierarchy
    const Nets& nets;
    const TimeScale& time_scale;
    // Told now and then what part of the file has been read, which is not needed any more.
    std::function<void(Bytes)> passed;
};

// What of the values is whole: all that stand in front of a place.
struct WholeValues {
    std::int64_t latest;  // the last time in picoseconds, -1 without one
    std::size_t end;
};

// Walks over all values without keeping any. Notes where the file is cut or damaged; the list that
// this befalls is not whole.
WholeValues FindWholeValues(const ChangeSource& source, Notes& notes);

// Puts the changes of the leaves of interest (in rising order; none: all) into blocks. Of several
// values at one picosecond the last one counts; a value that the net has already is none. Notes
// what values are lost. The file of the source ends where the whole values do. False when the
// blocks can't be kept.
bool ReadChanges(const ChangeSource& source, const recording::SignalTable& signals,
                 std::span<const std::uint32_t> leaves, recording::BlockSink& blocks, Notes& notes);

}  // namespace corv::ghw
