#pragma once

#include <cstdint>

// A value change of a wave: its time in picoseconds, its value as 4 or 8 stored bytes and its
// flags. The event belongs to its wave; a pointer to it stays valid until the next operation that
// changes the wave's event list. There is nothing to release.
//
// Flag bits: 1 is set on the events that AddMarkedEvent makes, 2 besides when it took the place of
// an event that was not marked. So flags are 0, 1 or 3, unless SetFlags stored others.
class IWaveEvent {
public:
    virtual std::int64_t GetTime() = 0;

    // 4 or 8.
    virtual std::uint32_t GetValueSize() = 0;

    // Copies the value in and gives true when the size is exactly the value size; false, with
    // nothing changed, for any other size and for null.
    virtual bool SetValue(const void* bytes, int size) = 0;

    // Copies the value out when the buffer holds at least the value size. Gives the number of bytes
    // copied: the value size, or 0 for a buffer that is too small or null.
    virtual std::uint32_t GetValue(void* buffer, std::uint32_t size) = 0;

    // The stored value bytes themselves, aligned to their size.
    virtual void* GetValueData() = 0;

    virtual std::uint8_t GetFlags() = 0;

    // Stores the flags and gives them back.
    virtual std::uint8_t SetFlags(std::uint8_t flags) = 0;

protected:
    ~IWaveEvent() = default;
};
