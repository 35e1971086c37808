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
// a time. A net is identified by its rank, the position among all nets sorted by number; a list has
// the distance of each net's rank from that of the net before it.
namespace corv::ghw {

// Where the values are and how they are to be interpreted.
struct ChangeSource {
    const platform::FileContent& content;
    Bytes file;  // its bytes, or as many of them as are to be read
    bool big_endian;
    std::size_t offset;  // after the hierarchy
    const Nets& nets;
    const TimeScale& time_scale;
    // Called now and then with a part of the file that has been read and is no longer needed.
    std::function<void(Bytes)> passed;
};

// How much of the values is complete: everything before a place.
struct WholeValues {
    std::int64_t latest;  // the last time in picoseconds, -1 if there is none
    std::size_t end;
};

// Walks over all values without keeping any. Notes where the file is cut or damaged; the list in
// which that happens does not count as complete.
WholeValues FindWholeValues(const ChangeSource& source, Notes& notes);

// Puts the changes of the leaves of interest (in rising order; an empty list means all) into
// blocks. Of several values at one picosecond the last one counts; a value that the net already has
// is dropped. Notes which values are lost. The file of the source must end where the complete
// values do. Returns false if the blocks cannot be kept.
bool ReadChanges(const ChangeSource& source, const recording::SignalTable& signals,
                 std::span<const std::uint32_t> leaves, recording::BlockSink& blocks, Notes& notes);

}  // namespace corv::ghw
