#pragma once

#include <memory>
#include <string_view>

#include "corv/platform/result.h"
#include "corv/typeinfo/type_info.h"

namespace corv::signals {

// A type that a signal has. It is shared: with the other signals of that type, and within a tree
// with the type that it is an element or a field of.
using TypePtr = std::shared_ptr<const KTypeInfo>;

// The type of a type-description string. The last few are remembered, since the signals of a design
// have few types. S_OK; E_INVALIDARG for a text that is no type; E_OUTOFMEMORY.
HRESULT FindType(std::string_view text, TypePtr& type) noexcept;

// Forgets the types that are remembered.
void ResetTypeCache() noexcept;

// A part of a type, which keeps the whole alive.
inline TypePtr PartOf(const TypePtr& whole, const KTypeInfo& part) noexcept {
    return {whole, &part};
}

}  // namespace corv::signals
