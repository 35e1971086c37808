#pragma once

#include <cstdint>

#include "corv/platform/export.h"
#include "corv/platform/unknown.h"
#include "corv/waves/find_mode.h"
#include "corv/waves/wave_event.h"
#include "corv/waves/wave_event_enumerator.h"

// The value changes (events) of one scalar signal, in the order of their times. Values are 4 or 8
// bytes that the wave stores and returns without a look at them; whoever has a value of 1 or 2
// bytes widens it to 4. Times are picoseconds; -1 stands for no time.
//
// Events are added in rising order of time; the wave does not sort, and searches rely on the order.
// A value is taken when its pointer is not null and its size is at least the value size; of a
// longer one the first bytes count. A new event without such a value has one of zero bytes.
//
// Appending takes constant time on average, a search by time logarithmic time. A list of events
// that has stopped growing takes 24 bytes an event (32 with 8-byte values) and a few percent.
class ISignalWave : public IUnknown {
public:
    // Adds an event with flags 0. At the time of the last event that one takes the value instead
    // and keeps its flags, unless the stamp is below the one given last: then nothing changes.
    // S_OK; E_OUTOFMEMORY, with the wave as it was, when memory runs out.
    virtual HRESULT CORV_CALL AddEvent(std::int64_t time, std::uint32_t stamp, const void* value,
                                       std::uint32_t value_size) = 0;

    // Adds a marked event, flags 1. At the time of the last event that one takes the value instead,
    // whatever the stamp, and becomes 3 if it was not marked. Results as of AddEvent.
    virtual HRESULT CORV_CALL AddMarkedEvent(std::int64_t time, std::uint32_t stamp,
                                             const void* value, std::uint32_t value_size) = 0;

    // Not supported: E_NOTIMPL.
    virtual HRESULT CORV_CALL InsertEvent(std::int64_t time, const void* value,
                                          std::uint32_t value_size) = 0;

    // Collects an event older than the wave's first one. Pending events are added in falling order
    // of time and take part in nothing until they are committed. Results as of AddEvent.
    virtual HRESULT CORV_CALL AddPendingEvent(std::int64_t time, const void* value,
                                              std::uint32_t value_size) = 0;

    // Puts the pending events in front of the wave's, the one added last first. S_OK;
    // E_OUTOFMEMORY, with the events and the pending ones as they were, when memory runs out.
    virtual HRESULT CORV_CALL CommitPendingEvents() = 0;

    // Drops the pending events. S_OK.
    virtual HRESULT CORV_CALL ClearPendingEvents() = 0;

    // Drops all events but the pending ones and sets the last stamp to 0. S_OK.
    virtual HRESULT CORV_CALL Clear() = 0;

    // Makes an enumerator that stands on the first event; the caller releases it. S_OK, or
    // E_OUTOFMEMORY with nothing written.
    virtual HRESULT CORV_CALL CreateEnumerator(IWaveEventEnumerator** enumerator) = 0;

    // Delivers the event that the search mode (EFindMode) chooses. S_OK, or E_FAIL with nothing
    // written when there is none.
    virtual HRESULT CORV_CALL FindEvent(std::int64_t time, std::uint32_t mode,
                                        IWaveEvent** event) = 0;

    // Removes the first event at exactly that time. S_OK, or E_FAIL when there is none.
    virtual HRESULT CORV_CALL RemoveEvent(std::int64_t time) = 0;

    // Removes the events from one time to another, both included; -1 leaves that side open, bounds
    // in the wrong order are swapped. E_FAIL when there is no event at or after `from`, else S_OK,
    // also when nothing lies between.
    virtual HRESULT CORV_CALL RemoveEvents(std::int64_t from, std::int64_t to) = 0;

    // The number of events, the pending ones apart.
    virtual std::uint32_t CORV_CALL GetEventCount() = 0;

    // 4 or 8.
    virtual std::uint32_t CORV_CALL GetValueSize() = 0;

    // The time of the first and of the last event, -1 when there are none.
    virtual std::int64_t CORV_CALL GetFirstTime() = 0;
    virtual std::int64_t CORV_CALL GetLastTime() = 0;

    // Copies the value of an event, counted from 0. E_INVALIDARG for an index past the events or a
    // buffer below the value size, E_FAIL for a null buffer, else S_OK.
    virtual HRESULT CORV_CALL GetEventValue(std::uint32_t index, void* buffer,
                                            std::uint32_t buffer_size) = 0;

protected:
    ~ISignalWave() = default;
};

// Makes an empty wave for scalars of `wave_type` bytes: one with 4-byte values for 1, 2 and 4, one
// with 8-byte values for 8. S_OK with a wave that the caller releases; E_OUTOFMEMORY, with nothing
// written, for any other type and when memory runs out.
CORV_API HRESULT CreateSignalWave(std::uint32_t wave_type, ISignalWave** wave) noexcept;
