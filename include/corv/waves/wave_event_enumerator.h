#pragma once

#include <cstdint>

#include "corv/platform/unknown.h"
#include "corv/waves/find_mode.h"
#include "corv/waves/wave_event.h"

// Walks the events of a wave forwards. The wave makes it (ISignalWave::CreateEnumerator) and must
// outlive it: the enumerator takes no reference on its wave. After a change of the wave's events it
// is placed again, with Reset or Seek, before it is used.
//
//     for (HRESULT found = events->Seek(t, FindAtOrAfter); found == S_OK;) {
//         IWaveEvent* event;
//         if ((found = events->Next(1, &event, nullptr)) == S_OK) ...
//     }
class IWaveEventEnumerator : public IUnknown {
public:
    // The event of the position, which stays; E_FAIL at the end, nothing is written then.
    virtual HRESULT CORV_CALL Current(IWaveEvent** event) = 0;

    // Stores up to `count` events from the position on and moves behind the last one. Writes their
    // number unless `delivered` is null. S_OK when there was at least one, S_FALSE when none.
    virtual HRESULT CORV_CALL Next(std::uint32_t count, IWaveEvent** events,
                                   std::uint32_t* delivered) = 0;

    // Back to the first event.
    virtual HRESULT CORV_CALL Reset() = 0;

    // 1 when the position is not the first event; 0 on it and when there are no events.
    virtual int CORV_CALL IsNotFirst() = 0;

    // 1 when the position is not the last event, also at the end and when there are no events.
    virtual int CORV_CALL IsNotLast() = 0;

    // 1 when the wave has events, else 0.
    virtual int CORV_CALL HasEvents() = 0;

    // The time of the position's event, -1 at the end.
    virtual std::int64_t CORV_CALL CurrentTime() = 0;

    // Moves to the event that the mode chooses; E_FAIL when there is none, the position stays then.
    virtual HRESULT CORV_CALL Seek(std::int64_t time, std::uint32_t mode) = 0;

protected:
    ~IWaveEventEnumerator() = default;
};
