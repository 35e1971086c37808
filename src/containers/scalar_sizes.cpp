#include "containers/scalar_sizes.h"

#include <cstdint>

#include "corv/containers/scalar_data_container.h"
#include "corv/containers/signal_data.h"
#include "corv/typeinfo/type_info.h"
#include "util/saturate.h"

namespace corv::containers {
namespace {

// A walk over the scalars of a type, in step with the handles of a signal.
class SizeWalk {
public:
    SizeWalk(IScalarDataContainer& container, ISignalData& data, std::uint32_t count) noexcept
        : container_(container), data_(data), count_(count) {}

    HRESULT Walk(const KTypeInfo& type) noexcept {
        if (type.IsScalar()) {
            return place_ < count_ ? ResetNext(type.GetScalarSize()) : E_INVALIDARG;
        }
        if (type.IsSimple()) {
            return WalkScalars(type);
        }
        switch (type.GetKind()) {
            case KTypeInfo::KindArray:
                return WalkElements(type);
            case KTypeInfo::KindRecord:
                return WalkFields(type);
            default:
                return E_UNEXPECTED;
        }
    }

private:
    HRESULT ResetNext(int size) noexcept {
        IScalarData* const scalar = container_.FindItem(data_.GetHandleAt(place_));
        if (scalar == nullptr) {
            return E_INVALIDARG;
        }
        scalar->ResetValue(static_cast<std::uint32_t>(size));
        ++place_;
        return S_OK;
    }

    HRESULT WalkScalars(const KTypeInfo& type) noexcept {
        const auto elements = static_cast<std::uint32_t>(type.GetNbOfElements());
        if (elements > count_ - place_) {
            return E_UNEXPECTED;
        }
        HRESULT result = S_OK;
        for (std::uint32_t i = 0; i < elements && SUCCEEDED(result); ++i) {
            result = ResetNext(
                static_cast<int>(static_cast<std::uint32_t>(type.GetSimpleSize()) / elements));
        }
        return result;
    }

    HRESULT WalkElements(const KTypeInfo& type) noexcept {
        const KTypeInfo& element = type.GetArrayElementKTypeInfo();
        const std::int64_t times =
            type.GetNbOfDimensions() > 0
                ? util::SaturatingMultiply(type.GetNbOfElements(),
                                           std::int64_t{type.GetNbOfDimensions()})
                : 0;
        HRESULT result = S_OK;
        for (std::int64_t i = 0; i < times && SUCCEEDED(result); ++i) {
            const std::uint32_t before = place_;
            result = Walk(element);
            if (place_ == before) {
                break;  // all further elements would do the same
            }
        }
        return result;
    }

    HRESULT WalkFields(const KTypeInfo& type) noexcept {
        HRESULT result = S_OK;
        for (int i = 0; i < type.GetNbOfFields(); ++i) {
            result = Walk(type.GetFieldKTypeInfo(i));
        }
        return result;
    }

    IScalarDataContainer& container_;
    ISignalData& data_;
    const std::uint32_t count_;  // of the handles
    std::uint32_t place_ = 0;    // among them
};

}  // namespace

HRESULT ApplyTypeSizes(IScalarDataContainer& container, ISignalData& data) noexcept {
    const KTypeInfo* const type = data.GetTypeInfo();
    const int count = data.GetHandleCount();
    if (type == nullptr || count <= 0) {
        return E_UNEXPECTED;
    }
    return SizeWalk(container, data, static_cast<std::uint32_t>(count)).Walk(*type);
}

}  // namespace corv::containers
