#pragma once

#include "corv/platform/result.h"

namespace corv {
class IScalarDataContainer;
class ISignalData;
}  // namespace corv

namespace corv::containers {

// What IScalarDataContainer::ApplyTypeSizes does, for data that is not null.
HRESULT ApplyTypeSizes(IScalarDataContainer& container, ISignalData& data) noexcept;

}  // namespace corv::containers
