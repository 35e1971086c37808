#pragma once

#include <cstdint>

#include "corv/platform/unknown.h"

// A byte stream implemented by the host, which signal trees are saved to and loaded from. The
// library calls only Read and Write and takes no reference.
class IByteStream : public IUnknown {
public:
    // Fills the buffer with the next `length` bytes. Returns a negative result if there are fewer.
    virtual HRESULT CORV_CALL Read(void* buffer, std::uint32_t length) = 0;

    // Appends `length` bytes. Returns a negative result if they could not all be written.
    virtual HRESULT CORV_CALL Write(const void* buffer, std::uint32_t length) = 0;

protected:
    ~IByteStream() = default;
};
