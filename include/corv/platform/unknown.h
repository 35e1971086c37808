#pragma once

#include <cstdint>

#include "corv/platform/guid.h"
#include "corv/platform/result.h"

// The calling convention of the operations of COM interfaces.
#if defined(_WIN32) && !defined(_WIN64)
#define CORV_CALL __stdcall
#else
#define CORV_CALL
#endif

inline constexpr GUID IID_IUnknown{0x00000000, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

// The base of every COM interface. It has no virtual destructor: an object ends with its last
// Release.
class IUnknown {
public:
    // For the object's own identifier and IID_IUnknown, stores the interface pointer in the target,
    // adds a reference and returns S_OK. For any other identifier, returns E_NOINTERFACE and leaves
    // the target unchanged. The target must not be null.
    virtual HRESULT CORV_CALL QueryInterface(const GUID& id, void** target) = 0;
    // Adds a reference and returns the new count.
    virtual std::uint32_t CORV_CALL AddRef() = 0;
    // Removes a reference and returns the new count. At 0 the object is destroyed.
    virtual std::uint32_t CORV_CALL Release() = 0;

protected:
    ~IUnknown() = default;
};
