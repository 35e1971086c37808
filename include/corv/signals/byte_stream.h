#pragma once

#include <cstdint>

#include "corv/platform/unknown.h"

// A stream of bytes of the host, which signal trees are saved to and loaded from. The library calls
// Read and Write alone and takes no reference.
class IByteStream : public IUnknown {
public:
    // Fills the buffer with the next `length` bytes. Negative when there are not so many.
    virtual HRESULT CORV_CALL Read(void* buffer, std::uint32_t length) = 0;

    // Appends `length` bytes. Negative when they could not all be written.
    virtual HRESULT CORV_CALL Write(const void* buffer, std::uint32_t length) = 0;

protected:
    ~IByteStream() = default;
};
