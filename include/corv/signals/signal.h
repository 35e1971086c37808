#pragma once

#include <cstdint>

#include "corv/containers/signal_container.h"
#include "corv/platform/export.h"
#include "corv/platform/unknown.h"
#include "corv/signals/bus_event_iterator.h"
#include "corv/waves/signal_wave.h"

class IByteStream;
class IEventsStreamWrite;
namespace stremo {
class IEventsStreamRead;
}

// A VHDL object of a design: a scalar signal with a wave, or a composite one (array, record) with
// members, each a signal of its own. Everything else about it is text in a map of properties, whose
// keys are compared without regard to case and are named in quotes with the operations below.
// Numbers are kept in decimal.
//
// Texts that operations return belong to the signal. A property's text is valid until that property
// changes, whatever happens to others; a value's text is valid until the next value text of any
// signal is made. Pointers to other objects are borrowed, without a reference, except those of the
// Enum operations and GetBusEventIterator, which the caller releases. A null text is stored as an
// empty one.
class ISignal : public IUnknown {
public:
    // Get and set "Name"; null if there is none.
    virtual const char* CORV_CALL GetName() = 0;
    virtual void CORV_CALL SetName(const char* name) = 0;

    // Writes the names of all signals above, from the top one, followed by its own: "s(3).a". The
    // buffer's `size` in characters must exceed the text and its terminating zero by one. Returns
    // E_INVALIDARG for a null buffer, and E_OUTOFMEMORY if it is too small; it then contains what
    // fitted.
    virtual HRESULT CORV_CALL GetFullName(char* buffer, std::uint32_t size) = 0;

    // Returns "Type Info", the type-description string; null if there is none.
    virtual const char* CORV_CALL GetTypeInfo() = 0;

    // Sets the type. A scalar receives a new wave, but one of 4 or 8 bytes keeps a wave with values
    // of that size and its events. An array receives one member per element ("(3)", "(1,2)"), a
    // record one per field (".a"). Setting the same string again changes nothing. A composite
    // signal loses its handle; the display mode becomes the usual one of the type. Returns
    // E_INVALIDARG for a string that is not a type; E_FAIL if the signal cannot be built (a
    // dimension of more than 256 indices, more than 1,048,576 members in the tree, element names of
    // more than 255 characters); or E_OUTOFMEMORY. After a failure type, wave and members are
    // unchanged, and GetStdLogicClass returns 0.
    virtual HRESULT CORV_CALL SetTypeInfo(const char* type) = 0;

    // Returns 1 for std_logic and std_ulogic, 6 for bit_vector, 7 for std_logic_vector and
    // std_ulogic_vector, and 0 for other types.
    virtual int CORV_CALL GetStdLogicClass() = 0;

    // Copies the type's name. Returns E_FAIL if there is none, and E_OUTOFMEMORY if the buffer of
    // `size` characters is too small; the buffer is unchanged after a failure.
    virtual HRESULT CORV_CALL GetTypeName(char* buffer, std::uint32_t size) = 0;

    // Returns the size of a value in the wave, 4 or 8 bytes; 0 without a wave.
    virtual std::uint32_t CORV_CALL GetWaveValueSize() = 0;

    // Get and set "Mode". A signal without one has its parent's, and 6 at the top.
    virtual int CORV_CALL GetMode() = 0;
    virtual void CORV_CALL SetMode(int mode) = 0;

    // Get and set the simulator's handle, -1 for none. It is also kept in "Handle".
    virtual int CORV_CALL GetHandle() = 0;
    virtual void CORV_CALL SetHandle(int handle) = 0;

    // Get and set "Color", 0 if there is none.
    virtual int CORV_CALL GetColor() = 0;
    virtual void CORV_CALL SetColor(int color) = 0;

    // Get and set "Stimulator", a text that the host keeps here; null if there is none.
    virtual const char* CORV_CALL GetStimulator() = 0;
    virtual void CORV_CALL SetStimulator(const char* text) = 0;

    // Get and set "Display Mode": 0 symbols, 1 binary, 2 octal, 3 decimal, 4 hexadecimal; 0 if
    // there is none. Setting 0 returns E_INVALIDARG if the standard logic class is 0.
    virtual int CORV_CALL GetDisplayMode() = 0;
    virtual HRESULT CORV_CALL SetDisplayMode(int mode) = 0;
    // Returns the radix of the display mode: 1 (none), 2, 8, 10 or 16.
    virtual int CORV_CALL GetDisplayRadix() = 0;

    // Makes the signal share the wave of another owner, to which it takes a reference; null
    // restores an empty wave of its own. Returns E_FAIL for a signal without a wave, and the result
    // of CreateSignalWave if its own wave cannot be made.
    virtual HRESULT CORV_CALL SetWave(ISignalWave* wave) = 0;
    // Returns whether the wave is the signal's own.
    virtual bool CORV_CALL OwnsWave() = 0;

    virtual void CORV_CALL Reserved1() = 0;

    // Sets whether value texts show literals in quotes, here and in all members below.
    virtual void CORV_CALL SetValueTextFlag(bool quoted) = 0;

    // Returns the text of the value of an event of this signal's wave; null without a type or wave,
    // and if the value has no text. The text is written after the previous value text in a shared
    // buffer and may overwrite the end of that one, so copy the previous one before. A text that
    // fills the 10,240 bytes leaves no room: this operation then returns null until the next
    // GetValueTextAt or GetValueText.
    virtual const char* CORV_CALL GetEventText(IWaveEvent* event) = 0;

    // Returns the text of the value at a time, taken from the event that the mode (EFindMode)
    // selects: one text for an array of scalars (01XZ), the members' texts in parentheses for other
    // composites ((01XZ,5)). Returns null if there is no such value, for a marked event, for texts
    // of 10,240 characters or more, and for arrays whose waves' values exceed 10,240 bytes in
    // total, which is more than 2,560 elements of 4 bytes or 1,280 of 8. For a composite, FindAt
    // means that at least one member changes exactly at that time.
    virtual const char* CORV_CALL GetValueTextAt(std::int64_t time, std::uint32_t mode) = 0;

    virtual int CORV_CALL Reserved2(int value) = 0;

    // Returns a property's text, null if there is none.
    virtual const char* CORV_CALL GetProperty(const char* key) = 0;
    // Sets a property. The key "Handle", spelt in exactly this way, also sets the handle.
    virtual void CORV_CALL SetProperty(const char* key, const char* value) = 0;

    // Reads the stimulator: "Stimulator Type" and "Stimulator Strength", each -1 if absent, and
    // "Stimulator Formula", empty if absent. Null pointers are skipped. Returns E_OUTOFMEMORY if
    // the formula and its zero do not fit into the buffer's `size` characters; type and strength
    // are still written.
    virtual HRESULT CORV_CALL GetStimulatorInfo(int* type, int* strength, char* formula,
                                                std::uint32_t size) = 0;

    // Sets the stimulator. Type 0 or 1 is a formula, kept in its normal form; 2 is a hot key, the
    // first character of the text; 3 is a clock, kept in "Stimulator Clock"; -1, or an empty or
    // null text, removes the stimulator. The previous hot key is erased in every case. A formula
    // that CStimulus refuses, or for which memory runs out, changes nothing else. The text may be a
    // property of this signal.
    virtual void CORV_CALL SetStimulatorInfo(int type, int strength, const char* text) = 0;

    // Get and set "Hot-Key", 0 if there is none. Setting it makes the stimulator a hot key, here
    // and in all members below; 0 erases the key.
    virtual int CORV_CALL GetHotKey() = 0;
    virtual void CORV_CALL SetHotKey(int key) = 0;

    virtual bool CORV_CALL GetSpareFlag() = 0;

    // Returns the composite signal above, or the parent that the host chose; null at the top. A
    // parent must outlive its members.
    virtual ISignal* CORV_CALL GetParent() = 0;
    // Returns the members, null for a signal that has none.
    virtual ISignalContainer* CORV_CALL GetSubSignals() = 0;
    // Returns the wave, null for a composite signal and for one without a type.
    virtual ISignalWave* CORV_CALL GetWave() = 0;

    // Make enumerators over the members and over the wave's events, and an iterator over the events
    // of all leaves below; the caller releases them. They return E_FAIL for a signal without
    // members or without a wave, respectively; otherwise the result of the operation that makes the
    // object.
    virtual HRESULT CORV_CALL EnumSubSignals(ISignalEnumerator** enumerator) = 0;
    virtual HRESULT CORV_CALL EnumEvents(IWaveEventEnumerator** enumerator) = 0;
    virtual HRESULT CORV_CALL GetBusEventIterator(IBusEventIterator** iterator) = 0;

    // Converts the text of a value of a scalar signal to its 1, 2, 4 or 8 stored bytes. Returns
    // E_FAIL for other signals and for a text that is not a value of the type, and E_INVALIDARG if
    // the buffer of `size` bytes is too small; the buffer is unchanged after a failure.
    virtual HRESULT CORV_CALL TextToValue(const char* text, void* buffer, std::uint32_t size) = 0;

    // Reads this signal, its properties and members, from a stream and adds it to the container,
    // which has made it and gives up its reference. Called by the container; see
    // ISignalContainer::Load for the results.
    virtual HRESULT CORV_CALL Load(IByteStream* stream, ISignalContainer* owner,
                                   ISignal* parent) = 0;
    // Writes this signal, its properties and members, but no events. Returns E_FAIL if a property
    // cannot be written and, before the first byte is written, if the tree contains something that
    // Load would refuse: a key of more than 127 bytes, a value of more than 10,239 bytes, or more
    // than 65,535 entries.
    virtual HRESULT CORV_CALL Save(IByteStream* stream) = 0;

    // Works as Load, from a recording. The container has set name, handle, mode and type.
    virtual HRESULT CORV_CALL LoadFromReader(stremo::IEventsStreamRead* reader,
                                             ISignalContainer* owner, ISignal* parent,
                                             int member_count) = 0;
    // Writes this signal and its members to a recording, as the member of its parent at `index`.
    // Returns E_FAIL for a null writer and if the writer refuses.
    virtual HRESULT CORV_CALL WriteToWriter(IEventsStreamWrite* writer, int index) = 0;

    // Returns the text of the value of the wave's first event, in the form of GetValueTextAt for
    // composites; null if there is no event.
    virtual const char* CORV_CALL GetValueText() = 0;

    // Replaces the parent; no reference is taken.
    virtual void CORV_CALL SetParent(ISignal* parent) = 0;

    // Returns "MaxTime", the latest time recorded for the signal in picoseconds; 0 if there is
    // none.
    virtual std::int64_t CORV_CALL GetMaxTime() = 0;

protected:
    ~ISignal() = default;
};

// Makes a signal with a type (null or empty for none) below a parent (null for none); the caller
// releases it. Returns E_FAIL if the type cannot be applied, or E_OUTOFMEMORY. `*signal` is null
// after a failure.
CORV_API HRESULT CreateSignal(const char* type, ISignal* parent, ISignal** signal) noexcept;

// The same with a standard type (see CreateStdTypeInfo). Returns E_INVALIDARG for an index that is
// not a standard type, and E_FAIL for the unconstrained types 6 to 8, which cannot be built.
CORV_API HRESULT CreateStdSignal(std::uint32_t index, ISignal* parent, ISignal** signal) noexcept;
