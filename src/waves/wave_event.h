#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "corv/waves/wave_event.h"

namespace corv::waves {

// Return whether a value argument is usable (not null and long enough), and its value bytes: zero
// unless it is usable.
template <class Value>
inline bool IsUsable(const void* value, std::size_t size) noexcept {
    return value != nullptr && size >= sizeof(Value);
}
template <class Value>
inline Value UsableOrZero(const void* value, std::size_t size) noexcept {
    Value bytes = 0;
    if (IsUsable<Value>(value, size)) {
        std::memcpy(&bytes, value, sizeof(Value));
    }
    return bytes;
}

// An event as stored in the lists of a wave, by value: 24 bytes with a 4-byte value, 32 with an
// 8-byte one. The operations that are not virtual are for the library itself.
template <class Value>
class WaveEvent final : public IWaveEvent {
public:
    WaveEvent(std::int64_t time, Value value, std::uint8_t flags) noexcept
        : fields_{time, value, flags} {}

    std::int64_t Time() const noexcept { return fields_.time; }
    std::uint8_t Flags() const noexcept { return fields_.flags; }
    void Assign(const void* value, std::size_t size) noexcept {
        if (IsUsable<Value>(value, size)) {
            std::memcpy(&fields_.value, value, sizeof(Value));
        }
    }

    std::int64_t GetTime() noexcept override { return fields_.time; }
    std::uint32_t GetValueSize() noexcept override { return sizeof(Value); }
    bool SetValue(const void* bytes, int size) noexcept override {
        if (bytes == nullptr || size != static_cast<int>(sizeof(Value))) {
            return false;
        }
        std::memcpy(&fields_.value, bytes, sizeof(Value));
        return true;
    }
    std::uint32_t GetValue(void* buffer, std::uint32_t size) noexcept override {
        if (!IsUsable<Value>(buffer, size)) {
            return 0;
        }
        std::memcpy(buffer, &fields_.value, sizeof(Value));
        return sizeof(Value);
    }
    void* GetValueData() noexcept override { return &fields_.value; }
    std::uint8_t GetFlags() noexcept override { return fields_.flags; }
    std::uint8_t SetFlags(std::uint8_t flags) noexcept override { return fields_.flags = flags; }

private:
    // In one piece, since events are copied often and compilers move a struct as a block.
    struct Fields {
        std::int64_t time;
        Value value;
        std::uint8_t flags;
    };
    Fields fields_;
};

}  // namespace corv::waves

using CWaveEvent32 = corv::waves::WaveEvent<std::uint32_t>;
using CWaveEvent64 = corv::waves::WaveEvent<std::uint64_t>;

static_assert(sizeof(void*) != 8 || (sizeof(CWaveEvent32) == 24 && sizeof(CWaveEvent64) == 32));
