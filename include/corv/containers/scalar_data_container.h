#pragma once

#include <cstdint>

#include "corv/containers/scalar_data.h"
#include "corv/platform/export.h"
#include "corv/platform/result.h"

namespace corv {

class ISignalData;

// The index from simulator handles to the scalars of a recorded simulation, and from each scalar to
// the signal data objects that contain it: one entry for each handle, in ascending order of the
// handles. Entries are handed out without a reference; the container holds one until their last id
// is removed, or all of them, or the container ends.
class IScalarDataContainer {
public:
    // The reference count after the change; the object ends with its last reference.
    virtual std::uint32_t AddRef() = 0;
    virtual std::uint32_t Release() = 0;

    // Add and remove a reference from each handle of a signal data object to its id, up to the
    // first failure, whose result they give. E_INVALIDARG for null; S_OK without handles.
    virtual HRESULT AddSignalData(ISignalData* data) = 0;
    virtual HRESULT RemoveSignalData(ISignalData* data) = 0;

    // Adds an id to the entry of a handle, which is made when there is none. E_INVALIDARG when
    // either is negative; E_OUTOFMEMORY.
    virtual HRESULT AddReference(int handle, int id) = 0;
    // Removes an id from the entry of a handle, and the entry when that was its last one.
    // E_INVALIDARG when either is negative or there is no such entry.
    virtual HRESULT RemoveReference(int handle, int id) = 0;

    // Zeroes the values of a signal data object's scalars and gives each the size of its type; the
    // handles are taken for the scalars of the type in order, array elements and record fields
    // first to last. E_INVALIDARG for null; E_UNEXPECTED without a type or handles; E_INVALIDARG or
    // E_UNEXPECTED, the entries before having their new sizes, where handles are too few for the
    // type or one has no entry.
    virtual HRESULT ApplyTypeSizes(ISignalData* data) = 0;

    // Null past the end.
    virtual IScalarData* GetItemAt(std::uint32_t index) = 0;
    // Null when there is none.
    virtual IScalarData* FindItem(int handle) = 0;

    virtual void RemoveAll() = 0;

    virtual int GetCount() = 0;

protected:
    ~IScalarDataContainer() = default;
};

// Makes an empty container that the caller releases. E_OUTOFMEMORY; E_UNEXPECTED when there is no
// memory for its parts; the out is null then.
CORV_API HRESULT CreateScalarDataContainer(IScalarDataContainer** container) noexcept;

}  // namespace corv
