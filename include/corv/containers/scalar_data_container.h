#pragma once

#include <cstdint>

#include "corv/containers/scalar_data.h"
#include "corv/platform/export.h"
#include "corv/platform/result.h"

namespace corv {

class ISignalData;

// The index from simulator handles to the scalars of a recorded simulation, and from each scalar to
// the signal data objects that contain it: one entry for each handle, in ascending order of the
// handles. Entries are returned without a reference. The container holds one until the entry's last
// id or all entries are removed, or the container ends.
class IScalarDataContainer {
public:
    // Return the reference count after the change. The object ends with its last reference.
    virtual std::uint32_t AddRef() = 0;
    virtual std::uint32_t Release() = 0;

    // Add and remove a reference from each handle of a signal data object to its id. They stop at
    // the first failure and return its result. They return E_INVALIDARG for null, and S_OK for an
    // object without handles.
    virtual HRESULT AddSignalData(ISignalData* data) = 0;
    virtual HRESULT RemoveSignalData(ISignalData* data) = 0;

    // Adds an id to the entry of a handle, which is made if there is none. Returns E_INVALIDARG if
    // either number is negative, or E_OUTOFMEMORY.
    virtual HRESULT AddReference(int handle, int id) = 0;
    // Removes an id from the entry of a handle, and the entry itself if that was its last id.
    // Returns E_INVALIDARG if either number is negative or there is no such entry.
    virtual HRESULT RemoveReference(int handle, int id) = 0;

    // Zeroes the values of a signal data object's scalars and sets each to the size of its type.
    // The handles are matched with the scalars of the type in order, array elements and record
    // fields from first to last. Returns E_INVALIDARG for null, and E_UNEXPECTED for an object
    // without a type or without handles. If there are too few handles for the type, or a handle has
    // no entry, it returns E_INVALIDARG or E_UNEXPECTED; the entries before that handle have their
    // new sizes by then.
    virtual HRESULT ApplyTypeSizes(ISignalData* data) = 0;

    // Returns the entry at an index in ascending order of the handles, null past the end.
    virtual IScalarData* GetItemAt(std::uint32_t index) = 0;
    // Returns the entry of a handle, null if there is none.
    virtual IScalarData* FindItem(int handle) = 0;

    virtual void RemoveAll() = 0;

    virtual int GetCount() = 0;

protected:
    ~IScalarDataContainer() = default;
};

// Makes an empty container, which the caller releases. Returns E_OUTOFMEMORY, or E_UNEXPECTED if
// there is no memory for its parts; `*container` is null after a failure.
CORV_API HRESULT CreateScalarDataContainer(IScalarDataContainer** container) noexcept;

}  // namespace corv
