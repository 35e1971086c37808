#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "stremo/block_store.h"
#include "stremo/signal_table.h"

// The form that every recording has in memory, whatever file it came from:
//
//     SignalTable   the signals (signal_table.h)
//     BlockStore    their changes (block_store.h), made by a BlockBuilder (block_builder.h)
//
// A format (format.h) makes a Recording. RecordingReader (recording_reader.h) reads all of them;
// SignalCursor (signal_cursor.h) is the fast way to a single signal.
namespace corv::recording {

class Recording {
public:
    explicit Recording(std::string file_name) : file_name_(std::move(file_name)) {}
    Recording(const Recording&) = delete;
    Recording& operator=(const Recording&) = delete;
    virtual ~Recording() = default;

    // Returns what GetFormatName returns, such as "corv event file".
    virtual const char* FormatName() const noexcept = 0;

    // Returns the changes. Called with the first question about values or events, so that a reader
    // that only lists signals need not read them. `leaves` are those of interest, in rising order;
    // an empty list means all. Other leaves may be left out; this is called again if they turn out
    // to be of interest. Returns null, with the stream error set, on failure.
    virtual std::unique_ptr<BlockStore> OpenBlocks(std::span<const std::uint32_t> leaves) = 0;

    // Returns whether leaves of no interest are left out. If not, OpenBlocks is called only once.
    virtual bool LeavesOut() const noexcept { return true; }

    // Returns whether the latest times in the table are reliable. If not, a reader looks for the
    // last event.
    virtual bool KnowsLatestTimes() const noexcept { return true; }

    const SignalTable& signals() const noexcept { return signals_; }
    const std::string& file_name() const noexcept { return file_name_; }

    // What was repaired, assumed or lost, one sentence each, for users who ask about the file.
    const std::vector<std::string>& notes() const noexcept { return notes_; }

protected:
    SignalTable signals_;
    std::vector<std::string> notes_;

private:
    std::string file_name_;
};

}  // namespace corv::recording
