#pragma once

#include <cstdint>

#include "corv/platform/export.h"
#include "corv/platform/unknown.h"

class ISignal;

// The index from simulator handles to the signals that carry them. Several signals may carry one
// handle; they are listed in the order in which they were registered. Handle -1 means none and is
// never listed.
//
// The manager takes no references to signals. A signal of this library leaves all managers when it
// ends, whatever its handle is by then; the host must remove a signal of its own class before that
// signal ends or changes its handle. A signal whose handle changes stays listed under the old one
// until it is added again (it is then listed under both), ends, or leaves a container that uses the
// manager.
//
// The manager has two cursors, one over the handles and one over a handle's signals. Adding or
// removing entries ends an enumeration in progress; start it again with the First operation.
class IHandleManager : public IUnknown {
public:
    // Return the handles in ascending signed order, and -1 past the last one or on a new manager.
    virtual int CORV_CALL GetFirstHandle() = 0;
    virtual int CORV_CALL GetNextHandle() = 0;

    // Return the signals of a handle, without those whose own handle has become -1; null past the
    // last one, for a handle without signals and on a new manager. The pointers carry no reference.
    virtual ISignal* CORV_CALL GetFirstSignal(int handle) = 0;
    virtual ISignal* CORV_CALL GetNextSignal() = 0;

    // Registers a signal under its handle; a signal that is already registered stays where it is.
    // Returns S_OK, E_INVALIDARG if its handle is -1 or it has no wave, or E_OUTOFMEMORY.
    virtual HRESULT CORV_CALL AddSignal(ISignal* signal) = 0;

    // Removes a signal from the list of the handle that it carries now. Returns E_FAIL if it is not
    // in that list.
    virtual HRESULT CORV_CALL RemoveSignal(ISignal* signal) = 0;

    // Removes a handle with all its signals. Returns E_FAIL if there is no such handle.
    virtual HRESULT CORV_CALL RemoveHandle(int handle) = 0;

    virtual void CORV_CALL RemoveAll() = 0;

protected:
    ~IHandleManager() = default;
};

// Makes an empty manager, which the caller releases. Returns S_OK, or E_OUTOFMEMORY with `*manager`
// unchanged.
CORV_API HRESULT CreateHandleManager(IHandleManager** manager) noexcept;
