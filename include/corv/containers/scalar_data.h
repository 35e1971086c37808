#pragma once

#include <cstdint>

#include "corv/platform/result.h"

namespace corv {

// A scalar of a recorded simulation: its simulator handle, the bytes of its current value and the
// ids of the signal data objects (signal_data.h) that contain it.
class IScalarData {
public:
    // Return the reference count after the change. The object ends with its last reference.
    virtual std::uint32_t AddRef() = 0;
    virtual std::uint32_t Release() = 0;

    // Adds an id unless it is already there. Returns E_INVALIDARG for a negative id, or
    // E_OUTOFMEMORY.
    virtual HRESULT AddSignalId(int id) = 0;
    // Removes an id. Returns E_FAIL if it is not there.
    virtual HRESULT RemoveSignalId(int id) = 0;

    // Sets the handle. Returns E_INVALIDARG for a negative one. The handle under which a container
    // lists this entry does not change.
    virtual HRESULT SetScalarHandle(int handle) = 0;

    // Copies a value of up to 10 bytes in. For a larger one it returns E_INVALIDARG and changes
    // nothing.
    virtual HRESULT SetValue(const void* bytes, std::uint32_t size) = 0;
    // Zeroes the value and sets its size, which is cut to 10 bytes. Returns S_OK.
    virtual HRESULT ResetValue(std::uint32_t size) = 0;

    // Returns the handle, -1 if none has been set.
    virtual int GetScalarHandle() = 0;
    virtual std::uint32_t GetValueSize() = 0;
    // Copies the value out. Returns E_INVALIDARG if it is larger than the target.
    virtual HRESULT GetValue(void* target, std::uint32_t target_size) = 0;
    // Returns all 10 bytes, which may be read and written in place as long as the object lives.
    virtual unsigned char* GetValueBuffer() = 0;

    // Return the number of ids, and the id at an index in ascending order: -1 past the end.
    virtual int GetSignalIdCount() = 0;
    virtual int GetSignalIdAt(std::uint32_t index) = 0;

    virtual ~IScalarData() = default;
};

}  // namespace corv
