#pragma once

#include <cstdint>

// The values that the leaves of a bus have at the current time of a bus event iterator. The object
// belongs to the iterator and follows it; there is nothing to release. Leaves are counted from 0 in
// the order of the bus's members, depth first.
class IBusEvent {
public:
    // Returns the time in picoseconds, -1 before the first event and at the end.
    virtual std::int64_t GetTime() = 0;

    // Returns the number of leaves.
    virtual int GetCount() = 0;

    // Returns the size of a leaf's value, 4 or 8 bytes; 0 for an index outside.
    virtual std::uint32_t GetValueSize(std::uint32_t leaf) = 0;

    // Copies a leaf's value into a buffer of at least its size and returns the number of bytes
    // copied. Returns 0 if the buffer is too small, the leaf has no value yet, or the index is
    // outside.
    virtual std::uint32_t GetValue(std::uint32_t leaf, void* buffer, std::uint32_t size) = 0;

    // Returns the stored value bytes themselves, valid until the leaf's wave changes; null if the
    // leaf has no value yet or the index is outside.
    virtual const void* GetValueData(std::uint32_t leaf) = 0;

    // Returns the combined flags of the leaves' events at exactly this time: 1 is set if all of
    // them are marked (or there are none), 2 if one of them overwrote an unmarked event.
    virtual std::uint8_t GetFlags() = 0;

    // Returns the number of leaves.
    virtual int GetValueCount() = 0;

protected:
    ~IBusEvent() = default;
};
