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
// registers the leaves with its handle manager; the containers of members below it are given the
// same one. Signals are handed out without a reference, for as long as the container holds them.
//
// Trees and paths are followed 256 levels down; what is deeper is not reached (FindSignal,
// AssignHandles, SetHandleManager), not saved and not loaded.
class ISignalContainer : public IUnknown {
public:
    // Puts a signal in front of another. E_INVALIDARG when that one is not in the list;
    // E_OUTOFMEMORY, also of the handle manager, with the list as it was; no other result of the
    // handle manager counts.
    virtual HRESULT CORV_CALL Insert(ISignal* signal, ISignal* before) = 0;

    // Appends a signal. Gives what the handle manager says (E_INVALIDARG for a signal without a
    // handle or wave, which is in the list all the same); S_OK without a handle manager;
    // E_OUTOFMEMORY with nothing appended.
    virtual HRESULT CORV_CALL Add(ISignal* signal) = 0;

    // Unregisters a signal with all its members, whatever their handles, takes it out (its first
    // place, when it stands in several) and releases it. E_FAIL when it is not in the list.
    virtual HRESULT CORV_CALL Remove(ISignal* signal) = 0;

    // Puts a new signal in the place of one in the list and gives it that one's name. E_INVALIDARG
    // when the old one is not in the list or the new one has a parent; E_OUTOFMEMORY, with the list
    // as it was.
    virtual HRESULT CORV_CALL Replace(ISignal* old_signal, ISignal* new_signal) = 0;

    // As CreateStdSignal and CreateSignal, without a parent; the new signal is not in the list, and
    // the caller releases it.
    virtual HRESULT CORV_CALL NewStdSignal(std::uint32_t index, ISignal** signal) = 0;
    virtual HRESULT CORV_CALL NewSignal(const char* type, ISignal** signal) = 0;

    // Unregisters and releases all signals. A handle manager that nobody else holds is emptied.
    virtual void CORV_CALL RemoveAll() = 0;

    virtual int CORV_CALL GetCount() = 0;

    // Gives the leaves below the signal of that path (see FindSignal) the handles, in order, until
    // either ends, and registers them with this container's handle manager. A leaf shares the wave
    // of the first signal registered under its handle, else it has its own. E_INVALIDARG for a
    // count below 1, E_FAIL when there is no such signal.
    virtual HRESULT CORV_CALL AssignHandles(const char* path, const int* handles, int count) = 0;

    // Finds a signal by its name and the element and field selections behind it: "s(3).a" is the
    // member ".a" of the member "(3)" of the signal "s". Case does not matter; an extended
    // identifier (\a.b\) is not split. What is left of the path at a leaf is not looked at. E_FAIL,
    // with the out as it was, when there is none. Names are compared as they are now; as long as
    // those of a long list stay, finding one takes constant time.
    virtual HRESULT CORV_CALL FindSignal(const char* path, ISignal** signal) = 0;

    // Makes an enumerator that stands on the first signal; the caller releases it. E_OUTOFMEMORY.
    virtual HRESULT CORV_CALL EnumSignals(ISignalEnumerator** enumerator) = 0;

    // E_INVALIDARG past the end, with the out as it was.
    virtual HRESULT CORV_CALL GetAt(std::uint32_t index, ISignal** signal) = 0;

    // Delivers the handle manager with a reference; E_FAIL when there is none.
    virtual HRESULT CORV_CALL GetHandleManager(IHandleManager** manager) = 0;

    // Replaces the handle manager (null: none) here and in all containers of members below.
    // Signals in the list are not registered with the new one; with the old one they stay
    // registered until they end. S_OK.
    virtual HRESULT CORV_CALL SetHandleManager(IHandleManager* manager) = 0;

    // Appends the signals of a stream that Save has written, as members of the parent unless that
    // is null. A signal that can't be read ends nothing: what is read stays. The stream's result
    // when the count can't be read; E_FAIL when it is 0, and when members are nested too deep or
    // memory runs out, which ends the load; else S_OK.
    virtual HRESULT CORV_CALL Load(IByteStream* stream, ISignal* parent) = 0;

    // Writes all signals with their properties and members, but no events. E_FAIL, before the first
    // byte is written, for what Load would refuse: more than 65,535 signals, members nested too
    // deep, texts of properties that are too long (ISignal::Save); else the first result that is a
    // failure.
    virtual HRESULT CORV_CALL Save(IByteStream* stream) = 0;

    // Appends the signals of a recording, without their events. E_FAIL when one can't be read:
    // LastStreamError (stream_error.h) tells why, and those before it stay. A signal that is a
    // member of itself can't be read, nor what comes after 67,108,864 signals, members counted.
    virtual HRESULT CORV_CALL LoadFromReader(stremo::IEventsStreamRead* reader) = 0;

    // Writes the signals, without events, to a recording. E_FAIL for a null writer or when it
    // refuses a signal; S_OK, with nothing written, when it is not ready.
    virtual HRESULT CORV_CALL WriteToWriter(IEventsStreamWrite* writer) = 0;

    // Appends one signal of a recording with all its members: the top-level one of that index, or
    // with a parent that one's sub-signal. Delivers it without a reference; E_FAIL, with null in
    // the out, when it can't be read.
    virtual HRESULT CORV_CALL CreateFromReader(stremo::IEventsStreamRead* reader, ISignal* parent,
                                               int index, ISignal** signal) = 0;

    // The latest time of the signals that were loaded, in picoseconds; 0 at first.
    virtual std::int64_t CORV_CALL GetMaxTime() = 0;

protected:
    ~ISignalContainer() = default;
};

// Makes an empty container that the caller releases. It uses the handle manager given and takes a
// reference to it; with null it makes its own. E_OUTOFMEMORY, with the out as it was.
CORV_API HRESULT CreateSignalContainer(ISignalContainer** container,
                                       IHandleManager* manager) noexcept;
