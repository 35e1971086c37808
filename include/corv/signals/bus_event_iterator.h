#pragma once

#include <cstdint>

#include "corv/platform/export.h"
#include "corv/platform/unknown.h"
#include "corv/signals/bus_event.h"
#include "corv/waves/find_mode.h"

class ISignal;

// Walks the events of all leaves of a composite signal (a bus) together, in order of time: events
// at the same time make one bus event. The leaves are those that the bus has when the iterator is
// made. The bus must outlive the iterator. After a change of a leaf's wave, place it anew with
// Reset or Seek before using it.
//
//     while (events->Next() == S_OK) {
//         const std::int64_t time = events->GetEvent()->GetTime(); ...
//     }
class IBusEventIterator : public IUnknown {
public:
    // Returns the current bus event, without a reference. It is always the same object, which lives
    // as long as the iterator.
    virtual IBusEvent* CORV_CALL GetEvent() = 0;

    // Moves to the earliest time at which a leaf has its next event; the leaves with an event at
    // that time move to it, the others keep theirs. Returns S_OK, or S_FALSE with the time -1 at
    // the end. If the wave of any leaf is empty, it always returns S_FALSE.
    virtual HRESULT CORV_CALL Next() = 0;

    // Goes back to the start: the time is -1, the leaves show their first events, and Next delivers
    // these again.
    virtual void CORV_CALL Reset() = 0;

    // Places every leaf on the event that the mode (EFindMode) selects; the iterator's own time
    // does not change. With FindAt, each leaf is placed on its last event at or before `time`;
    // returns S_OK if at least one leaf changes exactly at `time`, otherwise E_FAIL. With the other
    // modes, returns E_FAIL if a leaf has no such event; the leaves after that one are not moved.
    virtual HRESULT CORV_CALL Seek(std::int64_t time, std::uint32_t mode) = 0;

    // Returns the size of all leaves' values together, in bytes.
    virtual std::uint32_t CORV_CALL GetSize() = 0;

protected:
    ~IBusEventIterator() = default;
};

// Makes an iterator over the leaves of a bus, positioned before the first event, which the caller
// releases. Returns E_INVALIDARG for a signal without members, E_OUTOFMEMORY, or E_FAIL if the
// members or a leaf's events cannot be enumerated; `*iterator` is not written after a failure.
CORV_API HRESULT CreateBusEventIterator(ISignal* bus, IBusEventIterator** iterator) noexcept;
