#pragma once

#include <cstdint>

#include "corv/platform/export.h"
#include "corv/platform/unknown.h"
#include "corv/waves/find_mode.h"
#include "corv/waves/wave_event.h"
#include "corv/waves/wave_event_enumerator.h"

// The value changes (events) of one scalar signal, in the order of their times. Values are 4 or 8
// bytes, which the wave stores and returns without interpreting them; callers widen a value of 1 or
// 2 bytes to 4. Times are picoseconds; -1 means no time.
//
// Events must be added in rising order of time; the wave does not sort, and searches rely on the
// order. A value is stored if its pointer is not null and its size is at least the value size; of a
// longer one the first bytes are stored. A new event without such a value has a value of zero
// bytes.
//
// Appending takes constant time on average, a search by time logarithmic time. A list of events
// that has stopped growing takes 24 bytes per event (32 with 8-byte values) plus a few percent.
class ISignalWave : public IUnknown {
public:
    // Adds an event with flags 0. If the last event has the same time, that event takes the value
    // instead and keeps its flags, unless the stamp is below the previous one: then nothing
    // changes. Returns S_OK, or E_OUTOFMEMORY with the wave unchanged.
    virtual HRESULT CORV_CALL AddEvent(std::int64_t time, std::uint32_t stamp, const void* value,
                                       std::uint32_t value_size) = 0;

    // Adds a marked event, with flags 1. If the last event has the same time, that event takes the
    // value instead, whatever the stamp, and its flags become 3 if it was not marked. Returns what
    // AddEvent returns.
    virtual HRESULT CORV_CALL AddMarkedEvent(std::int64_t time, std::uint32_t stamp,
                                             const void* value, std::uint32_t value_size) = 0;

    // Not supported. Returns E_NOTIMPL.
    virtual HRESULT CORV_CALL InsertEvent(std::int64_t time, const void* value,
                                          std::uint32_t value_size) = 0;

    // Collects an event older than the wave's first one. Pending events must be added in falling
    // order of time; no other operation sees them until they are committed. Returns what AddEvent
    // returns.
    virtual HRESULT CORV_CALL AddPendingEvent(std::int64_t time, const void* value,
                                              std::uint32_t value_size) = 0;

    // Inserts the pending events before the wave's events, the one added last first. Returns S_OK,
    // or E_OUTOFMEMORY with both lists unchanged.
    virtual HRESULT CORV_CALL CommitPendingEvents() = 0;

    // Drops the pending events. Returns S_OK.
    virtual HRESULT CORV_CALL ClearPendingEvents() = 0;

    // Drops all events except the pending ones and sets the last stamp to 0. Returns S_OK.
    virtual HRESULT CORV_CALL Clear() = 0;

    // Makes an enumerator positioned on the first event, which the caller releases. Returns S_OK,
    // or E_OUTOFMEMORY with nothing written.
    virtual HRESULT CORV_CALL CreateEnumerator(IWaveEventEnumerator** enumerator) = 0;

    // Delivers the event that the search mode (EFindMode) selects. Returns S_OK, or E_FAIL with
    // nothing written if there is none.
    virtual HRESULT CORV_CALL FindEvent(std::int64_t time, std::uint32_t mode,
                                        IWaveEvent** event) = 0;

    // Removes the first event at exactly that time. Returns S_OK, or E_FAIL if there is none.
    virtual HRESULT CORV_CALL RemoveEvent(std::int64_t time) = 0;

    // Removes the events from one time to another, both included. -1 leaves that side open; bounds
    // in the wrong order are swapped. Returns E_FAIL if there is no event at or after `from`,
    // otherwise S_OK, even if no event is in between.
    virtual HRESULT CORV_CALL RemoveEvents(std::int64_t from, std::int64_t to) = 0;

    // Returns the number of events without the pending ones.
    virtual std::uint32_t CORV_CALL GetEventCount() = 0;

    // Returns the size of a value in bytes, 4 or 8.
    virtual std::uint32_t CORV_CALL GetValueSize() = 0;

    // Return the time of the first and of the last event, -1 if there are none.
    virtual std::int64_t CORV_CALL GetFirstTime() = 0;
    virtual std::int64_t CORV_CALL GetLastTime() = 0;

    // Copies the value of an event, counted from 0. Returns E_INVALIDARG for an index past the
    // events or a buffer below the value size, E_FAIL for a null buffer, otherwise S_OK.
    virtual HRESULT CORV_CALL GetEventValue(std::uint32_t index, void* buffer,
                                            std::uint32_t buffer_size) = 0;

protected:
    ~ISignalWave() = default;
};

// Makes an empty wave for scalars of `wave_type` bytes, which the caller releases: with 4-byte
// values for 1, 2 and 4, and with 8-byte values for 8. Returns S_OK, or E_OUTOFMEMORY, with nothing
// written, for any other type and if out of memory.
CORV_API HRESULT CreateSignalWave(std::uint32_t wave_type, ISignalWave** wave) noexcept;
