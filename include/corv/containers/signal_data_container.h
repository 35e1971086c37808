#pragma once

#include <cstdint>

#include "corv/containers/signal_data.h"
#include "corv/platform/export.h"
#include "corv/platform/result.h"

namespace corv {

// Signal data objects in ascending order of their ids; of those with the same id the one added last
// comes first. The container holds a reference to each and returns them without one.
class ISignalDataContainer {
public:
    // Return the reference count after the change. The object ends with its last reference.
    virtual std::uint32_t AddRef() = 0;
    virtual std::uint32_t Release() = 0;

    // Adds an object. Returns E_INVALIDARG for null and for an object without an id, or
    // E_OUTOFMEMORY.
    virtual HRESULT Add(ISignalData* data) = 0;
    // Removes an object and releases it. Returns E_INVALIDARG for null, and E_FAIL if it is not
    // there.
    virtual HRESULT Remove(ISignalData* data) = 0;

    // Returns the object at an index, null past the end.
    virtual ISignalData* GetAt(std::uint32_t index) = 0;
    // Asks each object in turn with ISignalData::FindByName and returns the first one found, else
    // null.
    virtual ISignalData* FindByName(const char* name) = 0;
    // Returns the first object with that id, null if there is none.
    virtual ISignalData* FindById(int id) = 0;

    virtual int GetCount() = 0;

    virtual ~ISignalDataContainer() = default;
};

// Makes an empty container, which the caller releases. Returns E_OUTOFMEMORY, or E_FAIL if there is
// no memory for its parts; `*container` is null after a failure.
CORV_API HRESULT CreateSignalDataContainer(ISignalDataContainer** container) noexcept;

}  // namespace corv
