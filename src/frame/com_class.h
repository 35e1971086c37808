#pragma once

#include <cstring>

#include "corv/platform/unknown.h"

namespace corv::frame {

// Identifies the class of a COM object by the address of its virtual table, with which every such
// object begins. This works on foreign objects built without RTTI, where dynamic_cast would not.
// The tables of the library's final classes are its own, so no other object has them.
inline const void* ClassOf(const IUnknown& object) noexcept {
    const void* table;
    std::memcpy(&table, static_cast<const void*>(&object), sizeof table);
    return table;
}

}  // namespace corv::frame
