#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "stremo/block_store.h"
#include "stremo/signal_table.h"

// The one shape that every recording has inside, whatever file it came from:
//
//     SignalTable   the signals (signal_table.h)
//     BlockStore    their changes (block_store.h), made by a BlockBuilder (block_builder.h)
//
// A format (format.h) makes a Recording; RecordingReader (recording_reader.h) is the reader of all
// of them, SignalCursor (signal_cursor.h) the fast way to one signal.
namespace corv::recording {

class Recording {
public:
    explicit Recording(std::string file_name) : file_name_(std::move(file_name)) {}
    Recording(const Recording&) = delete;
    Recording& operator=(const Recording&) = delete;
    virtual ~Recording() = default;

    // As GetFormatName gives it, such as "corv event file".
    virtual const char* FormatName() const noexcept = 0;

    // The changes. Asked with the first question about values or events, so that a reader that
    // lists signals only need not read them. `leaves` are those of interest, in rising order; none
    // named: all. The others may be left out; it is asked again when they turn out to be of
    // interest. Null on failure, with the stream error set.
    virtual std::unique_ptr<BlockStore> OpenBlocks(std::span<const std::uint32_t> leaves) = 0;

    // Whether leaves of no interest are left out. If not, the changes are asked for once.
    virtual bool LeavesOut() const noexcept { return true; }

    // Whether the latest times of the table are true. If not, a reader looks for the last event.
    virtual bool KnowsLatestTimes() const noexcept { return true; }

    const SignalTable& signals() const noexcept { return signals_; }
    const std::string& file_name() const noexcept { return file_name_; }

    // What was repaired, guessed or lost, one sentence each, for people who ask about the file.
    const std::vector<std::string>& notes() const noexcept { return notes_; }

protected:
    SignalTable signals_;
    std::vector<std::string> notes_;

private:
    std::string file_name_;
};

}  // namespace corv::recording
