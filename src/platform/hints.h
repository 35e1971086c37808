#pragma once

// Hints to the compiler and the processor that change no result.
namespace corv::platform {

// The value, with its origin hidden from the compiler: what is computed from it stays arithmetic
// and does not become a branch.
template <class T>
inline T Opaque(T value) noexcept {
#if defined(__GNUC__)
    __asm__("" : "+r"(value));
#endif
    return value;
}

// Starts to fetch memory that is read soon. Any address will do.
inline void Prefetch(const void* address) noexcept {
#if defined(__GNUC__)
    __builtin_prefetch(address);
#else
    static_cast<void>(address);
#endif
}

}  // namespace corv::platform
