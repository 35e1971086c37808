#pragma once

#include <cstdint>

#include "corv/containers/handle_manager.h"
#include "corv/containers/signal_enumerator.h"
#include "corv/platform/export.h"
#include "corv/platform/unknown.h"

class IByteStream;
class IEventsStreamWrite;
class ISignal;
namespace stremo {
class IEventsStreamRead;
}

// An ordered list of signals: the host's top-level ones, or the members of a composite signal, so
// that containers and signals make a tree. The container holds a reference to each signal and
// registers the leaves with its handle manager, which the containers of members below it share.
// Signals are returned without a reference and stay valid as long as the container holds them.
//
// Trees and paths are followed 256 levels down. Whatever is deeper is not reached (FindSignal,
// AssignHandles, SetHandleManager), not saved and not loaded.
class ISignalContainer : public IUnknown {
public:
    // Inserts a signal before another one. Returns E_INVALIDARG if that one is not in the list, or
    // E_OUTOFMEMORY (also from the handle manager) with the list unchanged. Other results of the
    // handle manager are ignored.
    virtual HRESULT CORV_CALL Insert(ISignal* signal, ISignal* before) = 0;

    // Appends a signal. Returns what the handle manager returns: E_INVALIDARG for a signal without
    // a handle or wave, which is in the list all the same. Returns S_OK without a handle manager,
    // and E_OUTOFMEMORY with nothing appended.
    virtual HRESULT CORV_CALL Add(ISignal* signal) = 0;

    // Unregisters a signal with all its members, whatever their handles, removes it from the list
    // (the first entry, if it has several) and releases it. Returns E_FAIL if it is not in the
    // list.
    virtual HRESULT CORV_CALL Remove(ISignal* signal) = 0;

    // Replaces a signal in the list by a new one, which takes over its name. Returns E_INVALIDARG
    // if the old signal is not in the list or the new one has a parent, or E_OUTOFMEMORY with the
    // list unchanged.
    virtual HRESULT CORV_CALL Replace(ISignal* old_signal, ISignal* new_signal) = 0;

    // Work as CreateStdSignal and CreateSignal without a parent. The new signal is not in the list,
    // and the caller releases it.
    virtual HRESULT CORV_CALL NewStdSignal(std::uint32_t index, ISignal** signal) = 0;
    virtual HRESULT CORV_CALL NewSignal(const char* type, ISignal** signal) = 0;

    // Unregisters and releases all signals. If nobody else holds the handle manager, it is emptied.
    virtual void CORV_CALL RemoveAll() = 0;

    virtual int CORV_CALL GetCount() = 0;

    // Assigns the handles, in order, to the leaves below the signal of that path (see FindSignal)
    // until either run out, and registers the leaves with this container's handle manager. A leaf
    // shares the wave of the first signal registered under its handle; otherwise it has its own.
    // Returns E_INVALIDARG for a count below 1, and E_FAIL if there is no such signal.
    virtual HRESULT CORV_CALL AssignHandles(const char* path, const int* handles, int count) = 0;

    // Finds a signal by its name and the element and field selections after it: "s(3).a" is the
    // member ".a" of the member "(3)" of the signal "s". Case does not matter; an extended
    // identifier (\a.b\) is not split. Whatever is left of the path at a leaf is ignored. Returns
    // E_FAIL, with `*signal` unchanged, if there is no such signal. Names are compared as they are
    // now; while the names in a long list do not change, each search takes constant time.
    virtual HRESULT CORV_CALL FindSignal(const char* path, ISignal** signal) = 0;

    // Makes an enumerator positioned on the first signal, which the caller releases. Returns S_OK
    // or E_OUTOFMEMORY.
    virtual HRESULT CORV_CALL EnumSignals(ISignalEnumerator** enumerator) = 0;

    // Delivers the signal at an index. Returns E_INVALIDARG past the end, with `*signal` unchanged.
    virtual HRESULT CORV_CALL GetAt(std::uint32_t index, ISignal** signal) = 0;

    // Delivers the handle manager with a reference. Returns E_FAIL if there is none.
    virtual HRESULT CORV_CALL GetHandleManager(IHandleManager** manager) = 0;

    // Replaces the handle manager (null for none) here and in all containers of members below.
    // Signals in the list are not registered with the new one, and stay registered with the old one
    // until they end. Returns S_OK.
    virtual HRESULT CORV_CALL SetHandleManager(IHandleManager* manager) = 0;

    // Appends the signals of a stream that Save has written, as members of the parent unless that
    // is null. A signal that cannot be read does not end the load, and signals already read stay.
    // Returns the stream's result if the count cannot be read, and E_FAIL if the count is 0.
    // Members nested too deep and lack of memory end the load with E_FAIL. Otherwise it returns
    // S_OK.
    virtual HRESULT CORV_CALL Load(IByteStream* stream, ISignal* parent) = 0;

    // Writes all signals with their properties and members, but without events. Returns E_FAIL,
    // before the first byte is written, if Load would refuse the result: more than 65,535 signals,
    // members nested too deep, texts of properties that are too long (ISignal::Save). Otherwise it
    // returns the first failure of the stream, or S_OK.
    virtual HRESULT CORV_CALL Save(IByteStream* stream) = 0;

    // Appends the signals of a recording, without their events. Returns E_FAIL if one cannot be
    // read: LastStreamError (stream_error.h) says why, and the signals before it stay. A signal
    // that is a member of itself cannot be read, nor can anything after 67,108,864 signals,
    // counting members.
    virtual HRESULT CORV_CALL LoadFromReader(stremo::IEventsStreamRead* reader) = 0;

    // Writes the signals, without events, to a recording. Returns E_FAIL for a null writer or if
    // the writer refuses a signal. Returns S_OK and writes nothing if the writer is not ready.
    virtual HRESULT CORV_CALL WriteToWriter(IEventsStreamWrite* writer) = 0;

    // Appends one signal of a recording with all its members: the top-level signal at that index
    // or, with a parent, the parent's sub-signal at that index. Delivers it without a reference.
    // Returns E_FAIL, with `*signal` null, if it cannot be read.
    virtual HRESULT CORV_CALL CreateFromReader(stremo::IEventsStreamRead* reader, ISignal* parent,
                                               int index, ISignal** signal) = 0;

    // Returns the latest time of the loaded signals in picoseconds, 0 before any load.
    virtual std::int64_t CORV_CALL GetMaxTime() = 0;

protected:
    ~ISignalContainer() = default;
};

// Makes an empty container, which the caller releases. It uses the given handle manager and takes a
// reference to it; with null it makes its own. Returns S_OK, or E_OUTOFMEMORY with `*container`
// unchanged.
CORV_API HRESULT CreateSignalContainer(ISignalContainer** container,
                                       IHandleManager* manager) noexcept;
