#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "corv/platform/export.h"
#include "corv/stremo/events_stream_read.h"

namespace corv {

// The bytes of a recording that lies in no file, or in a packed one.
class IStreamSource {
public:
    virtual ~IStreamSource() = default;
    // How many bytes there are; always the same.
    virtual std::uint64_t GetSize() noexcept = 0;
    // Reads bytes from an offset, all within the size. Null when that was done, else why not: a
    // part of a sentence that is never freed.
    virtual const char* Read(std::uint64_t offset, void* to, std::size_t size) noexcept = 0;
};

// Opens a recording of any format as stremo::CreateStreamRead does. Its bytes are read in windows
// of some megabytes, most of them in order, and some of them more than once; what has been read is
// let go. The reader owns the source; if there is none, the source has been ended. `name` is what
// messages call the recording. `time_unit` is that of corv::OpenGhwRecording; below 0: any format.
// Null when it can't be opened; corv::LastStreamError says why.
CORV_API stremo::IEventsStreamRead* OpenStreamSource(const char* name,
                                                     std::unique_ptr<IStreamSource> source,
                                                     int time_unit = -1) noexcept;

}  // namespace corv
