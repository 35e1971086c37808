#pragma once

#include <cstdint>
#include <functional>
#include <iosfwd>
#include <memory>
#include <string>

#include "corv/stremo/stream_source.h"

namespace corv::host {

// A packed recording, and what went wrong when it was unpacked for the first time.
struct PackedStream {
    std::unique_ptr<IStreamSource> source;
    std::string problem;  // why not all of it can be unpacked; or empty
};

// Unpacks a gzip file once and remembers places from which unpacking can restart. Parts are then
// unpacked when they are read, and only some megabytes are kept, whatever the size. `progress` is
// called now and then with the fraction done, 0 to 1.
//
// Throws std::runtime_error if the file cannot be read.
PackedStream OpenPacked(const std::string& file_name, const std::function<void(double)>& progress);

// The same for a stream, packed or not, that can be read only once and in order. It is kept in
// memory, packed.
PackedStream KeepPacked(std::istream& in);

}  // namespace corv::host
