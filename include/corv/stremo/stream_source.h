#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "corv/platform/export.h"
#include "corv/stremo/events_stream_read.h"

namespace corv {

// The bytes of a recording that is not in a file, or in a packed one. Implemented by the host.
class IStreamSource {
public:
    virtual ~IStreamSource() = default;
    // Returns the number of bytes, which must not change.
    virtual std::uint64_t GetSize() noexcept = 0;
    // Reads bytes from an offset, all within the size. Returns null on success, otherwise the
    // reason as a part of a sentence, which is never freed.
    virtual const char* Read(std::uint64_t offset, void* to, std::size_t size) noexcept = 0;
};

// Opens a recording of any format as stremo::CreateStreamRead does. Its bytes are read in windows
// of some megabytes, mostly in order and some of them more than once; they are not kept in memory.
// The reader owns the source; after a failure the source has been deleted. `name` is what messages
// call the recording. `time_unit` is that of corv::OpenGhwRecording; below 0, any format is opened.
// Returns null if the recording cannot be opened; corv::LastStreamError says why.
CORV_API stremo::IEventsStreamRead* OpenStreamSource(const char* name,
                                                     std::unique_ptr<IStreamSource> source,
                                                     int time_unit = -1) noexcept;

}  // namespace corv
