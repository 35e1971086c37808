#pragma once

#include <cstdint>

#include "corv/platform/export.h"
#include "corv/platform/unknown.h"
#include "corv/signals/bus_event.h"
#include "corv/waves/find_mode.h"

class ISignal;

// Walks the events of all leaves of a composite signal (a bus) together, in order of time: events
// at the same time make one bus event. The leaves are those that the bus has when the iterator is
// made. The bus must outlive it; after a change of a leaf's wave it is placed again, with Reset or
// Seek, before it is used.
//
//     while (events->Next() == S_OK) {
//         const std::int64_t time = events->GetEvent()->GetTime(); ...
//     }
class IBusEventIterator : public IUnknown {
public:
    // The current bus event: not counted, valid as long as the iterator lives, the same object
    // always.
    virtual IBusEvent* CORV_CALL GetEvent() = 0;

    // Moves to the earliest time at which a leaf has its next event; each leaf with an event there
    // takes it, the others keep theirs. S_OK, or S_FALSE with the time -1 at the end, and always
    // when a leaf's wave is empty.
    virtual HRESULT CORV_CALL Next() = 0;

    // Back to the start: the time is -1, the leaves show their first events, and Next delivers them
    // again.
    virtual void CORV_CALL Reset() = 0;

    // Places every leaf on the event that the mode (EFindMode) chooses; the iterator's time stays.
    // FindAt stands for: every leaf on its last event at or before the time, S_OK when one of them
    // changes exactly there, else E_FAIL. For the other modes E_FAIL when a leaf has no such event;
    // the leaves behind it are not moved then.
    virtual HRESULT CORV_CALL Seek(std::int64_t time, std::uint32_t mode) = 0;

    // Bytes of all the leaves' values together.
    virtual std::uint32_t CORV_CALL GetSize() = 0;

protected:
    ~IBusEventIterator() = default;
};

// Makes an iterator over the leaves of a bus, in front of the first event; the caller releases it.
// E_INVALIDARG for a signal without members; E_OUTOFMEMORY; E_FAIL when the members or a leaf's
// events can't be enumerated. The out is not written then.
CORV_API HRESULT CreateBusEventIterator(ISignal* bus, IBusEventIterator** iterator) noexcept;
