#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "platform/files.h"

namespace corv::platform {

// The source of a content's bytes.
class ContentSource {
public:
    virtual ~ContentSource() = default;
    // Reads bytes from an offset, all of them within the size passed to MakeContent. Returns null
    // on success, otherwise the reason as a part of a sentence in static storage.
    virtual const char* Read(std::uint64_t offset, unsigned char* to,
                             std::size_t size) noexcept = 0;
};

// Makes a content of that many bytes. It takes addresses for all of them, but memory only for the
// parts that were brought and not forgotten. Parts that were brought do not change, whatever
// happens to the source. On systems without such addresses the whole source takes memory. Returns
// null if there is no room. Throws std::bad_alloc.
std::unique_ptr<FileContent> MakeContent(std::unique_ptr<ContentSource> source, std::uint64_t size);

}  // namespace corv::platform
