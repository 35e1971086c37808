#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "platform/files.h"

namespace corv::platform {

// Where the bytes of a content come from.
class ContentSource {
public:
    virtual ~ContentSource() = default;
    // Reads bytes from an offset, which lie within the size that was told. Null when all of them
    // came, else why not, a part of a sentence of static storage.
    virtual const char* Read(std::uint64_t offset, unsigned char* to,
                             std::size_t size) noexcept = 0;
};

// A content of that many bytes which takes addresses for all of them, and memory for the parts that
// were brought and not forgotten. Nothing that happens to the source later changes a part that was
// brought. Without such addresses the source is read as a whole. Null when there is no room. Throws
// std::bad_alloc.
std::unique_ptr<FileContent> MakeContent(std::unique_ptr<ContentSource> source, std::uint64_t size);

}  // namespace corv::platform
