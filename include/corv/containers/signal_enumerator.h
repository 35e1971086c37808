#pragma once

#include <cstdint>

#include "corv/platform/unknown.h"

class ISignal;

// Walks the signals of a container in their order. It holds no reference to its container, which
// must outlive it. After a change of the container's list it is set back with Reset before it is
// used.
class ISignalEnumerator : public IUnknown {
public:
    // Stores up to `count` signals, without references, and moves behind them; their number goes to
    // `delivered` unless that is null. S_OK when there was at least one, S_FALSE when none.
    virtual HRESULT CORV_CALL Next(std::uint32_t count, ISignal** signals,
                                   std::uint32_t* delivered) = 0;

    // Back to the first signal.
    virtual void CORV_CALL Reset() = 0;

protected:
    ~ISignalEnumerator() = default;
};
