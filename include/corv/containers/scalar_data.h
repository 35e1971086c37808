#pragma once

#include <cstdint>

#include "corv/platform/result.h"

namespace corv {

// A scalar of a recorded simulation: its simulator handle, the bytes of its current value and the
// ids of the signal data objects (signal_data.h) that contain it.
class IScalarData {
public:
    // The reference count after the change; the object ends with its last reference.
    virtual std::uint32_t AddRef() = 0;
    virtual std::uint32_t Release() = 0;

    // Adds an id unless it is there already. E_INVALIDARG for a negative one; E_OUTOFMEMORY.
    virtual HRESULT AddSignalId(int id) = 0;
    // E_FAIL when the id is not there.
    virtual HRESULT RemoveSignalId(int id) = 0;

    // E_INVALIDARG for a negative handle. That of an entry of a container stays as it is.
    virtual HRESULT SetScalarHandle(int handle) = 0;

    // Copies a value of up to 10 bytes in; E_INVALIDARG, with nothing changed, for a larger one.
    virtual HRESULT SetValue(const void* bytes, std::uint32_t size) = 0;
    // Zeroes the value and gives it a size, at most 10. S_OK.
    virtual HRESULT ResetValue(std::uint32_t size) = 0;

    // -1 when no handle has been set.
    virtual int GetScalarHandle() = 0;
    virtual std::uint32_t GetValueSize() = 0;
    // Copies the value out; E_INVALIDARG when it is larger than the target.
    virtual HRESULT GetValue(void* target, std::uint32_t target_size) = 0;
    // All 10 bytes, to be read and written in place for as long as the object lives.
    virtual unsigned char* GetValueBuffer() = 0;

    // The ids in ascending order; -1 past the end.
    virtual int GetSignalIdCount() = 0;
    virtual int GetSignalIdAt(std::uint32_t index) = 0;

    virtual ~IScalarData() = default;
};

}  // namespace corv
