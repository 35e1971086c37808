#pragma once

#include <cstring>

#include "corv/platform/unknown.h"

namespace corv::frame {

// What tells the class of a COM object: the address of its table of operations, with which every
// such object begins, whoever made it. Unlike the language's own means it asks nothing of objects
// of other makers, which may come without information about their classes. The tables of the
// library's final classes are its own, so that no other object has them.
inline const void* ClassOf(const IUnknown& object) noexcept {
    const void* table;
    std::memcpy(&table, static_cast<const void*>(&object), sizeof table);
    return table;
}

}  // namespace corv::frame
