#include "corv/containers/scalar_data_container.h"

#include <memory>
#include <utility>

#include "containers/ordered_scalars.h"
#include "containers/scalar_sizes.h"
#include "corv/containers/signal_data.h"
#include "platform/guard.h"

namespace corv {
namespace {

using containers::OrderedScalars;
using containers::ScalarData;

class ScalarDataContainer final
    : public frame::PlainObject<ScalarDataContainer, IScalarDataContainer> {
public:
    bool SetUp() {
        scalars_.Reserve();
        return true;
    }

    HRESULT AddSignalData(ISignalData* data) noexcept override {
        return ForEachHandle(data, &ScalarDataContainer::AddReference);
    }
    HRESULT RemoveSignalData(ISignalData* data) noexcept override {
        return ForEachHandle(data, &ScalarDataContainer::RemoveReference);
    }
    HRESULT AddReference(int handle, int id) noexcept override;
    HRESULT RemoveReference(int handle, int id) noexcept override;
    HRESULT ApplyTypeSizes(ISignalData* data) noexcept override {
        return data != nullptr ? containers::ApplyTypeSizes(*this, *data) : E_INVALIDARG;
    }
    IScalarData* GetItemAt(std::uint32_t index) noexcept override { return scalars_.At(index); }
    IScalarData* FindItem(int handle) noexcept override { return scalars_.Find(handle); }
    void RemoveAll() noexcept override { scalars_.Clear(); }
    int GetCount() noexcept override { return static_cast<int>(scalars_.Count()); }

private:
    using Operation = HRESULT (ScalarDataContainer::*)(int handle, int id);

    // Calls an operation with each handle of the data, up to the first failure.
    HRESULT ForEachHandle(ISignalData* data, Operation operation) noexcept;
    void AddScalar(int handle, int id);

    OrderedScalars scalars_;
};

HRESULT ScalarDataContainer::ForEachHandle(ISignalData* data, Operation operation) noexcept {
    if (data == nullptr) {
        return E_INVALIDARG;
    }
    HRESULT result = S_OK;
    const int count = data->GetHandleCount();
    const int id = data->GetId();
    for (int i = 0; i < count && SUCCEEDED(result); ++i) {
        result = (this->*operation)(data->GetHandleAt(static_cast<std::uint32_t>(i)), id);
    }
    return result;
}

HRESULT ScalarDataContainer::AddReference(int handle, int id) noexcept {
    if (handle < 0 || id < 0) {
        return E_INVALIDARG;
    }
    if (ScalarData* const scalar = scalars_.Find(handle)) {
        return scalar->AddSignalId(id);
    }
    return platform::Done([&] { AddScalar(handle, id); }) ? S_OK : E_OUTOFMEMORY;
}

void ScalarDataContainer::AddScalar(int handle, int id) {
    OrderedScalars::Ptr scalar(std::make_unique<ScalarData>().release());
    scalar->SetScalarHandle(handle);
    if (FAILED(scalar->AddSignalId(id))) {
        throw std::bad_alloc();
    }
    scalars_.Insert(handle, std::move(scalar));
}

HRESULT ScalarDataContainer::RemoveReference(int handle, int id) noexcept {
    ScalarData* const scalar = id >= 0 ? scalars_.Find(handle) : nullptr;
    if (scalar == nullptr) {
        return E_INVALIDARG;
    }
    scalar->RemoveSignalId(id);
    if (scalar->GetSignalIdCount() == 0) {
        scalars_.Remove(handle);
    }
    return S_OK;
}

}  // namespace

HRESULT CreateScalarDataContainer(IScalarDataContainer** container) noexcept {
    return frame::CreatePlainObject<ScalarDataContainer>(
        container, E_UNEXPECTED, [](ScalarDataContainer& made) { return made.SetUp(); });
}

}  // namespace corv
