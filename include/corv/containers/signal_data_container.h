#pragma once

#include <cstdint>

#include "corv/containers/signal_data.h"
#include "corv/platform/export.h"
#include "corv/platform/result.h"

namespace corv {

// Signal data objects in ascending order of their ids; of those with the same id the one added last
// comes first. The container holds a reference to each and hands them out without one.
class ISignalDataContainer {
public:
    // The reference count after the change; the object ends with its last reference.
    virtual std::uint32_t AddRef() = 0;
    virtual std::uint32_t Release() = 0;

    // E_INVALIDARG for null and for an object without an id; E_OUTOFMEMORY.
    virtual HRESULT Add(ISignalData* data) = 0;
    // Takes the object out and releases it. E_INVALIDARG for null; E_FAIL when it is not there.
    virtual HRESULT Remove(ISignalData* data) = 0;

    // Null past the end.
    virtual ISignalData* GetAt(std::uint32_t index) = 0;
    // What the first object that has one finds by that name (ISignalData::FindByName), else null.
    virtual ISignalData* FindByName(const char* name) = 0;
    // The first object with that id, null when there is none.
    virtual ISignalData* FindById(int id) = 0;

    virtual int GetCount() = 0;

    virtual ~ISignalDataContainer() = default;
};

// Makes an empty container that the caller releases. E_OUTOFMEMORY; E_FAIL when there is no memory
// for its parts; the out is null then.
CORV_API HRESULT CreateSignalDataContainer(ISignalDataContainer** container) noexcept;

}  // namespace corv
