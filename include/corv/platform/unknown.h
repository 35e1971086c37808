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

// What every COM interface begins with. There is no virtual destructor: an object ends at its last
// Release.
class IUnknown {
public:
    // Stores the object's interface pointer in the target, counts one reference and gives S_OK, for
    // the object's own identifier and IID_IUnknown; any other gives E_NOINTERFACE and leaves the
    // target alone. The target must not be null.
    virtual HRESULT CORV_CALL QueryInterface(const GUID& id, void** target) = 0;
    // Counts one reference more; gives the new count.
    virtual std::uint32_t CORV_CALL AddRef() = 0;
    // Counts one less; gives the new count. At 0 the object is destroyed.
    virtual std::uint32_t CORV_CALL Release() = 0;

protected:
    ~IUnknown() = default;
};
