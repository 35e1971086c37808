#pragma once

#include <array>
#include <cstdint>

// A 16-byte identifier of an interface: {Data1-Data2-Data3-Data4[0..1]-Data4[2..7]}.
struct GUID {
    std::uint32_t Data1;
    std::uint16_t Data2;
    std::uint16_t Data3;
    std::array<std::uint8_t, 8> Data4;

    friend constexpr bool operator==(const GUID&, const GUID&) noexcept = default;
};
static_assert(sizeof(GUID) == 16);
