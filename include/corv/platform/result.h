#pragma once

#include <cstdint>

// Result codes in the component object model's convention: a signed 32-bit number, negative for a
// failure. Callers test the sign, not for equality with S_OK.
using HRESULT = std::int32_t;

inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT S_FALSE = 1;  // success, with nothing delivered
inline constexpr HRESULT E_NOTIMPL = static_cast<HRESULT>(0x80004001U);
inline constexpr HRESULT E_NOINTERFACE = static_cast<HRESULT>(0x80004002U);
inline constexpr HRESULT E_FAIL = static_cast<HRESULT>(0x80004005U);
inline constexpr HRESULT E_UNEXPECTED = static_cast<HRESULT>(0x8000FFFFU);
inline constexpr HRESULT E_OUTOFMEMORY = static_cast<HRESULT>(0x8007000EU);
inline constexpr HRESULT E_INVALIDARG = static_cast<HRESULT>(0x80070057U);

constexpr bool SUCCEEDED(HRESULT result) noexcept {
    return result >= 0;
}
constexpr bool FAILED(HRESULT result) noexcept {
    return result < 0;
}
