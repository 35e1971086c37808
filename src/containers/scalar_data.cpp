#include "containers/scalar_data.h"

#include <algorithm>
#include <cstring>

#include "platform/guard.h"

namespace corv::containers {

HRESULT ScalarData::AddSignalId(int id) noexcept {
    if (id < 0) {
        return E_INVALIDARG;
    }
    const auto place = std::lower_bound(ids_.begin(), ids_.end(), id);
    if (place != ids_.end() && *place == id) {
        return S_OK;
    }
    return platform::Done([&] { ids_.insert(place, id); }) ? S_OK : E_OUTOFMEMORY;
}

HRESULT ScalarData::RemoveSignalId(int id) noexcept {
    const auto place = std::lower_bound(ids_.begin(), ids_.end(), id);
    if (place == ids_.end() || *place != id) {
        return E_FAIL;
    }
    ids_.erase(place);
    return S_OK;
}

HRESULT ScalarData::SetScalarHandle(int handle) noexcept {
    if (handle < 0) {
        return E_INVALIDARG;
    }
    handle_ = handle;
    return S_OK;
}

HRESULT ScalarData::SetValue(const void* bytes, std::uint32_t size) noexcept {
    if (size > value_.size() || (bytes == nullptr && size > 0)) {
        return E_INVALIDARG;
    }
    if (size > 0) {
        std::memmove(value_.data(), bytes, size);  // which may be the buffer's own
    }
    value_size_ = size;
    return S_OK;
}

HRESULT ScalarData::ResetValue(std::uint32_t size) noexcept {
    value_.fill(0);
    value_size_ = std::min(size, static_cast<std::uint32_t>(value_.size()));
    return S_OK;
}

HRESULT ScalarData::GetValue(void* target, std::uint32_t target_size) noexcept {
    if (target_size < value_size_ || (target == nullptr && value_size_ > 0)) {
        return E_INVALIDARG;
    }
    if (value_size_ > 0) {
        std::memmove(target, value_.data(), value_size_);
    }
    return S_OK;
}

}  // namespace corv::containers
