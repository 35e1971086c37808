#pragma once

#include <cstdint>

#include "corv/platform/export.h"
#include "corv/platform/unknown.h"

class ISignal;

// The index from simulator handles to the signals that carry them. Several signals may carry one
// handle; they are listed in the order in which they were registered. Handle -1 means none and is
// never listed.
//
// Signals are not counted. A signal of this library that ends leaves all managers, whatever handle
// it has by then; one that a host has made must have been removed before, also when its handle
// changes. A signal whose handle changes stays listed under the old one until it is added again
// (it is then listed under both), ends, or leaves a container that uses the manager.
//
// The manager has two cursors, one over the handles and one over a handle's signals. Adding or
// removing entries ends an enumeration in progress; it is started again with the First operation.
class IHandleManager : public IUnknown {
public:
    // The handles in ascending signed order; -1 past the last one, and on a new manager.
    virtual int CORV_CALL GetFirstHandle() = 0;
    virtual int CORV_CALL GetNextHandle() = 0;

    // The signals of a handle, without those whose own handle is -1 by now; null past the last one,
    // for a handle without signals and on a new manager. The pointers carry no reference.
    virtual ISignal* CORV_CALL GetFirstSignal(int handle) = 0;
    virtual ISignal* CORV_CALL GetNextSignal() = 0;

    // Registers a signal under its handle; one that is there already stays where it is.
    // E_INVALIDARG when its handle is -1 or it has no wave; E_OUTOFMEMORY.
    virtual HRESULT CORV_CALL AddSignal(ISignal* signal) = 0;

    // Removes a signal from the list of the handle that it carries now. E_FAIL when it is not
    // there.
    virtual HRESULT CORV_CALL RemoveSignal(ISignal* signal) = 0;

    // Removes a handle with all its signals. E_FAIL when there is none.
    virtual HRESULT CORV_CALL RemoveHandle(int handle) = 0;

    virtual void CORV_CALL RemoveAll() = 0;

protected:
    ~IHandleManager() = default;
};

// Makes an empty manager that the caller releases. E_OUTOFMEMORY, with the out as it was.
CORV_API HRESULT CreateHandleManager(IHandleManager** manager) noexcept;
