#pragma once

#include <cstdint>

#include "corv/signals/byte_stream.h"

namespace corv::tree {

// A stream that accepts everything and keeps nothing. A tree is written to it first, so that a tree
// that could not be loaded again is refused before the first byte goes to the host.
class SaveCheck final : public IByteStream {
public:
    static SaveCheck& Get() noexcept {
        static SaveCheck check;
        return check;
    }

    HRESULT CORV_CALL QueryInterface(const GUID&, void**) noexcept override {
        return E_NOINTERFACE;
    }
    std::uint32_t CORV_CALL AddRef() noexcept override { return 1; }
    std::uint32_t CORV_CALL Release() noexcept override { return 1; }
    HRESULT CORV_CALL Read(void*, std::uint32_t) noexcept override { return E_FAIL; }
    HRESULT CORV_CALL Write(const void*, std::uint32_t) noexcept override { return S_OK; }
};

}  // namespace corv::tree
