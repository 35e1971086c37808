#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <utility>

#include "corv/signals/byte_stream.h"

namespace corv::test {

// Bytes in memory; fails when they end, and at the n-th call when that is set.
class MemoryStream final : public IByteStream {
public:
    explicit MemoryStream(std::string content = "") : bytes(std::move(content)) {}
    HRESULT CORV_CALL QueryInterface(const GUID&, void**) override { return E_NOINTERFACE; }
    std::uint32_t CORV_CALL AddRef() override { return 2; }
    std::uint32_t CORV_CALL Release() override { return 1; }
    HRESULT CORV_CALL Read(void* buffer, std::uint32_t length) override {
        if (++calls == failing_call || bytes.size() - position < length) {
            return E_UNEXPECTED;
        }
        std::memcpy(buffer, bytes.data() + position, length);
        position += length;
        return S_OK;
    }
    HRESULT CORV_CALL Write(const void* buffer, std::uint32_t length) override {
        if (++calls == failing_call) {
            return E_UNEXPECTED;
        }
        bytes.append(static_cast<const char*>(buffer), length);
        return S_OK;
    }

    std::string bytes;
    std::size_t position = 0;
    int calls = 0;
    int failing_call = 0;
};

}  // namespace corv::test
