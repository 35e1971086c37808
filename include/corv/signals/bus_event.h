#pragma once

#include <cstdint>

// The values that the leaves of a bus have at the time of a bus event iterator. It belongs to the
// iterator and follows it; there is nothing to release. Leaves are counted from 0 in the order of
// the bus's members, depth first.
class IBusEvent {
public:
    // Picoseconds; -1 before the first event and at the end.
    virtual std::int64_t GetTime() = 0;

    // The number of leaves.
    virtual int GetCount() = 0;

    // Bytes of a leaf's value, 4 or 8; 0 for an index outside.
    virtual std::uint32_t GetValueSize(std::uint32_t leaf) = 0;

    // Copies a leaf's value into a buffer of at least its size and gives the bytes copied; 0 when
    // the buffer is too small, the leaf has no value yet, or the index is outside.
    virtual std::uint32_t GetValue(std::uint32_t leaf, void* buffer, std::uint32_t size) = 0;

    // The stored value bytes themselves, null where GetValue gives 0; valid until the leaf's wave
    // changes.
    virtual const void* GetValueData(std::uint32_t leaf) = 0;

    // The flags of the leaves' events at exactly this time, combined: 1 when all of them are marked
    // (also when there are none), 2 when one of them overwrote an unmarked event.
    virtual std::uint8_t GetFlags() = 0;

    // The number of leaves.
    virtual int GetValueCount() = 0;

protected:
    ~IBusEvent() = default;
};
