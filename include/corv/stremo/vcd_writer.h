#pragma once

#include <cstdint>
#include <functional>

#include "corv/platform/export.h"
#include "corv/stremo/events_stream_read.h"

namespace corv {

// Options of WriteVcd. Times are picoseconds.
struct VcdOptions {
    // Writes only the four values of Verilog: U X - as x, Z W as z, 0 L as 0, 1 H as 1. For tools
    // that do not know the others.
    bool four_state = false;

    // Writes blanks in names as they are. VHDL allows them in extended identifiers, but most tools
    // read a name up to its first blank; without this they become "_".
    bool raw_names = false;

    // The part of the recording that is written: the values that the signals have at `start`, and
    // the events from there up to and including `end` (below 0: all of them). Times do not change.
    std::int64_t start = 0;
    std::int64_t end = -1;

    // Decides which top-level signals are written, by name and handle. An empty function takes all.
    std::function<bool(const char* name, int handle)> takes;

    // Called now and then with the time that has been reached. Returning false stops the writing,
    // which then counts as failed.
    std::function<bool(std::int64_t time)> progress;
};

// Writes a recording as a VCD file, which most tools read:
//
//     std_logic, bit, boolean     wire 1
//     vectors of those            wire N [left:right], all elements changed at a time in one change
//     integers                    integer 32, two's complement
//     floating point              real 64, as the shortest text that reads back to the same number
//     strings                     string 0 [left:right], blanks at their ends left out
//     other enumerations          string 0, the literal
//     records                     a scope with the fields
//     other arrays                each element, as name[i]
//
// The hierarchy separator in a name divides scopes. Signals that share a handle share a code. The
// file's unit is the picosecond. Scalars without a type are left out.
//
// The reader's position changes. On a reader of this library that has not been asked for events
// yet, the signals to be written are selected first (SelectStreamSignals). Returns false if the
// file could not be written (the written part stays) or if out of memory; corv::LastStreamError
// says why. No exception leaves it, not even one of the functions in the options.
CORV_API bool WriteVcd(stremo::IEventsStreamRead& reader, const char* file_name,
                       const VcdOptions& options = {}) noexcept;

}  // namespace corv
