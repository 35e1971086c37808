#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "corv/containers/scalar_data.h"
#include "frame/plain_object.h"

namespace corv::containers {

class ScalarData final : public frame::PlainObject<ScalarData, IScalarData> {
public:
    HRESULT AddSignalId(int id) noexcept override;
    HRESULT RemoveSignalId(int id) noexcept override;
    HRESULT SetScalarHandle(int handle) noexcept override;
    HRESULT SetValue(const void* bytes, std::uint32_t size) noexcept override;
    HRESULT ResetValue(std::uint32_t size) noexcept override;
    int GetScalarHandle() noexcept override { return handle_; }
    std::uint32_t GetValueSize() noexcept override { return value_size_; }
    HRESULT GetValue(void* target, std::uint32_t target_size) noexcept override;
    unsigned char* GetValueBuffer() noexcept override { return value_.data(); }
    int GetSignalIdCount() noexcept override { return static_cast<int>(ids_.size()); }
    int GetSignalIdAt(std::uint32_t index) noexcept override {
        return index < ids_.size() ? ids_[index] : -1;
    }

private:
    int handle_ = -1;
    std::array<unsigned char, 10> value_{};
    std::uint32_t value_size_ = 0;
    std::vector<int> ids_;  // ascending
};

}  // namespace corv::containers
