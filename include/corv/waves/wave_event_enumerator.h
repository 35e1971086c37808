#pragma once

#include <cstdint>

#include "corv/platform/unknown.h"
#include "corv/waves/find_mode.h"
#include "corv/waves/wave_event.h"

// Walks the events of a wave forwards. The wave makes it (ISignalWave::CreateEnumerator) and must
// outlive it: the enumerator takes no reference to its wave. After the wave's events have changed,
// place it anew with Reset or Seek before using it.
//
//     for (HRESULT found = events->Seek(t, FindAtOrAfter); found == S_OK;) {
//         IWaveEvent* event;
//         if ((found = events->Next(1, &event, nullptr)) == S_OK) ...
//     }
class IWaveEventEnumerator : public IUnknown {
public:
    // Delivers the event at the position without moving. Returns E_FAIL, with nothing written, at
    // the end.
    virtual HRESULT CORV_CALL Current(IWaveEvent** event) = 0;

    // Stores up to `count` events from the position on and moves past the last one. Stores their
    // number unless `delivered` is null. Returns S_OK if there was at least one, otherwise S_FALSE.
    virtual HRESULT CORV_CALL Next(std::uint32_t count, IWaveEvent** events,
                                   std::uint32_t* delivered) = 0;

    // Goes back to the first event.
    virtual HRESULT CORV_CALL Reset() = 0;

    // Returns 1 if the position is not the first event, 0 on the first event and if there are no
    // events.
    virtual int CORV_CALL IsNotFirst() = 0;

    // Returns 1 if the position is not the last event, also at the end and if there are no events.
    virtual int CORV_CALL IsNotLast() = 0;

    // Returns 1 if the wave has events, else 0.
    virtual int CORV_CALL HasEvents() = 0;

    // Returns the time of the event at the position, -1 at the end.
    virtual std::int64_t CORV_CALL CurrentTime() = 0;

    // Moves to the event that the mode selects. Returns E_FAIL, without moving, if there is none.
    virtual HRESULT CORV_CALL Seek(std::int64_t time, std::uint32_t mode) = 0;

protected:
    ~IWaveEventEnumerator() = default;
};
