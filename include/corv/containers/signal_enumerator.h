#pragma once

#include <cstdint>

#include "corv/platform/unknown.h"

class ISignal;

// Walks the signals of a container in their order. It holds no reference to its container, which
// must outlive it. After the container's list has changed, call Reset before using it again.
class ISignalEnumerator : public IUnknown {
public:
    // Stores up to `count` signals, without references, and moves past them; stores their number in
    // `delivered` unless that is null. Returns S_OK if there was at least one, otherwise S_FALSE.
    virtual HRESULT CORV_CALL Next(std::uint32_t count, ISignal** signals,
                                   std::uint32_t* delivered) = 0;

    // Goes back to the first signal.
    virtual void CORV_CALL Reset() = 0;

protected:
    ~ISignalEnumerator() = default;
};
