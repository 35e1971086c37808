#pragma once

// Hints to the compiler and the processor that change no result.
namespace corv::platform {

// Returns the value with its origin hidden from the compiler, so that computations with it stay
// arithmetic and do not become branches.
template <class T>
inline T Opaque(T value) noexcept {
#if defined(__GNUC__)
    __asm__("" : "+r"(value));
#endif
    return value;
}

// Starts to fetch memory that will be read soon. Any address is allowed.
inline void Prefetch(const void* address) noexcept {
#if defined(__GNUC__)
    __builtin_prefetch(address);
#else
    static_cast<void>(address);
#endif
}

}  // namespace corv::platform
