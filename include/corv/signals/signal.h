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
// members, each a signal of its own. What else it knows is text in a map of properties, whose keys
// are compared without regard to case; they are named with the operations. Numbers are kept in
// decimal.
//
// Texts that operations return belong to the signal: a property's until that property is changed,
// whatever happens to others; a value's until the next value text of any signal. Pointers to other
// objects are borrowed, without a reference, except those of the Enum operations and
// GetBusEventIterator, which the caller releases. A null text is stored as an empty one.
class ISignal : public IUnknown {
public:
    // "Name"; null when there is none.
    virtual const char* CORV_CALL GetName() = 0;
    virtual void CORV_CALL SetName(const char* name) = 0;

    // The names of all signals above, from the top one, and its own: "s(3).a". The buffer holds
    // `size` characters, one more than the text and its zero need. E_INVALIDARG without a buffer,
    // E_OUTOFMEMORY when it is too small: then it holds what fitted.
    virtual HRESULT CORV_CALL GetFullName(char* buffer, std::uint32_t size) = 0;

    // "Type Info", the type-description string; null when there is none.
    virtual const char* CORV_CALL GetTypeInfo() = 0;

    // Gives the signal a type: a scalar one a new wave (a type of 4 or 8 bytes keeps one with
    // values of that size, and its events), an array one member an element ("(3)",
    // "(1,2)"), a record one a field (".a"). The string that it has already changes nothing. A
    // composite signal loses its handle; the display mode becomes the type's usual one.
    // E_INVALIDARG for a string that is no type; E_FAIL when it can't be built: a dimension of more
    // than 256 indices, more than 1,048,576 members in the tree, element names beyond 255
    // characters; E_OUTOFMEMORY. Type, wave and members then stay as they were, GetStdLogicClass
    // gives 0.
    virtual HRESULT CORV_CALL SetTypeInfo(const char* type) = 0;

    // 1 std_logic and std_ulogic, 6 bit_vector, 7 std_logic_vector and std_ulogic_vector, 0 others.
    virtual int CORV_CALL GetStdLogicClass() = 0;

    // Copies the type's name. E_FAIL without one, E_OUTOFMEMORY when the buffer of `size`
    // characters is too small; the buffer then stays as it was.
    virtual HRESULT CORV_CALL GetTypeName(char* buffer, std::uint32_t size) = 0;

    // Bytes of a value in the wave, 4 or 8; 0 without a wave.
    virtual std::uint32_t CORV_CALL GetWaveValueSize() = 0;

    // "Mode", else the parent's; 6 at the top.
    virtual int CORV_CALL GetMode() = 0;
    virtual void CORV_CALL SetMode(int mode) = 0;

    // The simulator's handle, -1 for none; kept in "Handle" besides.
    virtual int CORV_CALL GetHandle() = 0;
    virtual void CORV_CALL SetHandle(int handle) = 0;

    // "Color", else 0.
    virtual int CORV_CALL GetColor() = 0;
    virtual void CORV_CALL SetColor(int color) = 0;

    // "Stimulator", a text that the host keeps here; null when there is none.
    virtual const char* CORV_CALL GetStimulator() = 0;
    virtual void CORV_CALL SetStimulator(const char* text) = 0;

    // "Display Mode", else 0: 0 symbols, 1 binary, 2 octal, 3 decimal, 4 hexadecimal. 0 is
    // E_INVALIDARG when the standard logic class is 0.
    virtual int CORV_CALL GetDisplayMode() = 0;
    virtual HRESULT CORV_CALL SetDisplayMode(int mode) = 0;
    // The radix of the display mode: 1 (none), 2, 8, 10 or 16.
    virtual int CORV_CALL GetDisplayRadix() = 0;

    // Shares a wave of somebody else's, with a reference; null gives the signal an empty wave of
    // its own again. E_FAIL on a signal without a wave; the wave's result when it can't be made.
    virtual HRESULT CORV_CALL SetWave(ISignalWave* wave) = 0;
    // Whether the wave is the signal's own.
    virtual bool CORV_CALL OwnsWave() = 0;

    virtual void CORV_CALL Reserved1() = 0;

    // Whether value texts show literals in quotes, here and in all members below.
    virtual void CORV_CALL SetValueTextFlag(bool quoted) = 0;

    // The text of the value of an event of this signal's wave. Null without a type or wave, and
    // when the value has no text. It is written after the last value text, whose end it may take
    // away: that one is to be copied before. After a text that fills the 10,240 bytes there is no
    // room: null until the next GetValueTextAt or GetValueText.
    virtual const char* CORV_CALL GetEventText(IWaveEvent* event) = 0;

    // The text of the value at a time, of the event that the mode (EFindMode) chooses: of an array
    // of scalars one text (01XZ), of other composites the members' in parentheses ((01XZ,5)). Null
    // when there is no such value, for a marked event, for texts of 10,240 characters or more, and
    // for arrays whose waves' values are more than 10,240 bytes together: more than 2,560 elements
    // of 4 bytes or 1,280 of 8.
    // FindAt means for a composite: at least one member changes exactly then.
    virtual const char* CORV_CALL GetValueTextAt(std::int64_t time, std::uint32_t mode) = 0;

    virtual int CORV_CALL Reserved2(int value) = 0;

    // A property's text; null when there is none.
    virtual const char* CORV_CALL GetProperty(const char* key) = 0;
    // Sets a property; the key "Handle", in this case, sets the handle too.
    virtual void CORV_CALL SetProperty(const char* key, const char* value) = 0;

    // The stimulator: "Stimulator Type" and "Stimulator Strength", -1 without, and "Stimulator
    // Formula", empty without. A null pointer is skipped. E_OUTOFMEMORY when the formula and its
    // zero don't fit into the buffer's `size` characters; type and strength are written then.
    virtual HRESULT CORV_CALL GetStimulatorInfo(int* type, int* strength, char* formula,
                                                std::uint32_t size) = 0;

    // Sets the stimulator: type 0 or 1 a formula, kept in its normal form; 2 a hot key, the first
    // character of the text; 3 a clock, kept in "Stimulator Clock"; -1 or no text none at all. The
    // hot key is erased in every case. A formula that CStimulus refuses changes nothing else, nor
    // does one that memory runs out for. The text may be a property of this signal.
    virtual void CORV_CALL SetStimulatorInfo(int type, int strength, const char* text) = 0;

    // "Hot-Key", else 0. Setting it makes the stimulator a hot key, here and in all members below;
    // 0 erases the key.
    virtual int CORV_CALL GetHotKey() = 0;
    virtual void CORV_CALL SetHotKey(int key) = 0;

    virtual bool CORV_CALL GetSpareFlag() = 0;

    // The composite signal above or what the host chose; null at the top. A parent must outlive its
    // members.
    virtual ISignal* CORV_CALL GetParent() = 0;
    // The members; null for a signal without.
    virtual ISignalContainer* CORV_CALL GetSubSignals() = 0;
    // The wave; null for a composite signal and one without a type.
    virtual ISignalWave* CORV_CALL GetWave() = 0;

    // Enumerators over the members and over the wave's events, and an iterator over the events of
    // all leaves below. E_FAIL for a signal without members (without a wave); else the result of
    // the operation that makes them.
    virtual HRESULT CORV_CALL EnumSubSignals(ISignalEnumerator** enumerator) = 0;
    virtual HRESULT CORV_CALL EnumEvents(IWaveEventEnumerator** enumerator) = 0;
    virtual HRESULT CORV_CALL GetBusEventIterator(IBusEventIterator** iterator) = 0;

    // Reads the text of a value of a scalar signal into its stored bytes, 1, 2, 4 or 8. E_FAIL for
    // other signals and for a text that is no value of the type, E_INVALIDARG when the buffer of
    // `size` bytes is too small; the buffer then stays as it was.
    virtual HRESULT CORV_CALL TextToValue(const char* text, void* buffer, std::uint32_t size) = 0;

    // Reads this signal, properties and members, from a stream, and adds it to the container, which
    // has made it and gives up its reference. The owner calls it; the results are told there.
    virtual HRESULT CORV_CALL Load(IByteStream* stream, ISignalContainer* owner,
                                   ISignal* parent) = 0;
    // Writes this signal, properties and members, but no events. E_FAIL when a property can't be
    // written; and, before the first byte is, when the tree holds what Load would refuse: a key of
    // more than 127 bytes, a value of more than 10,239, more than 65,535 entries.
    virtual HRESULT CORV_CALL Save(IByteStream* stream) = 0;

    // As Load, from a recording; name, handle, mode and type are set by the owner.
    virtual HRESULT CORV_CALL LoadFromReader(stremo::IEventsStreamRead* reader,
                                             ISignalContainer* owner, ISignal* parent,
                                             int member_count) = 0;
    // Writes this signal and its members to a recording, as the index-th of its parent. E_FAIL for
    // a null writer and when it refuses.
    virtual HRESULT CORV_CALL WriteToWriter(IEventsStreamWrite* writer, int index) = 0;

    // The text of the wave's first event's value, of composites as GetValueTextAt writes them; null
    // without one.
    virtual const char* CORV_CALL GetValueText() = 0;

    // Replaces the parent; no reference is taken.
    virtual void CORV_CALL SetParent(ISignal* parent) = 0;

    // "MaxTime", else 0: the latest time recorded for the signal, in picoseconds.
    virtual std::int64_t CORV_CALL GetMaxTime() = 0;

protected:
    ~ISignal() = default;
};

// Makes a signal with a type (null or empty: none) below a parent (null: none); the caller releases
// it. E_FAIL when the type can't be applied, E_OUTOFMEMORY. The out is null after each failure.
CORV_API HRESULT CreateSignal(const char* type, ISignal* parent, ISignal** signal) noexcept;

// The same with a standard type, see CreateStdTypeInfo; E_INVALIDARG for an index that is none. The
// unconstrained ones, 6 to 8, can't be built: E_FAIL.
CORV_API HRESULT CreateStdSignal(std::uint32_t index, ISignal* parent, ISignal** signal) noexcept;
