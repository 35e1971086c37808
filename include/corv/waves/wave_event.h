#pragma once

#include <cstdint>

// A value change of a wave: its time in picoseconds, its value as 4 or 8 stored bytes and its
// flags. The event belongs to its wave; a pointer to it stays valid until an operation changes the
// wave's list of events. There is nothing to release.
//
// Flag bits: 1 is set on events that AddMarkedEvent makes; 2 is set as well if the event replaced
// one that was not marked. So flags are 0, 1 or 3, unless SetFlags has stored others.
class IWaveEvent {
public:
    virtual std::int64_t GetTime() = 0;

    // Returns the size of the value in bytes, 4 or 8.
    virtual std::uint32_t GetValueSize() = 0;

    // Copies the value in and returns true if the size is exactly the value size. Returns false,
    // with nothing changed, for any other size and for null.
    virtual bool SetValue(const void* bytes, int size) = 0;

    // Copies the value out and returns its size. Returns 0, with nothing copied, for a buffer that
    // is too small or null.
    virtual std::uint32_t GetValue(void* buffer, std::uint32_t size) = 0;

    // Returns the stored value bytes themselves, aligned to their size.
    virtual void* GetValueData() = 0;

    virtual std::uint8_t GetFlags() = 0;

    // Stores the flags and returns them.
    virtual std::uint8_t SetFlags(std::uint8_t flags) = 0;

protected:
    ~IWaveEvent() = default;
};
