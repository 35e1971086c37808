#pragma once

#include <cstdint>
#include <functional>
#include <iosfwd>
#include <memory>
#include <string>

#include "corv/stremo/stream_source.h"

namespace corv::host {

// A recording that is packed, and what befell when it was gone through.
struct PackedStream {
    std::unique_ptr<IStreamSource> source;
    std::string problem;  // why not all of it can be unpacked; or empty
};

// Goes through what gzip has packed, once, and remembers places from which it can be unpacked
// again: parts are unpacked when they are read, and what is kept is some megabytes whatever the
// size. `progress` is called now and then with the part that is done, 0 to 1.
//
// Throws std::runtime_error when the file can't be read.
PackedStream OpenPacked(const std::string& file_name, const std::function<void(double)>& progress);

// The same for what comes only once and in order, packed or not: it is kept in memory, packed.
PackedStream KeepPacked(std::istream& in);

}  // namespace corv::host
