#pragma once

#include "corv/typeinfo/type_info.h"
#include "typeinfo/type_tree.h"

namespace corv::typeinfo {

// The way from the hosts' view of a type to the library's own.
class TypeAccess {
public:
    // Of a type that is not KindNone; it lives as long as the type does.
    static TypeView ViewOf(const KTypeInfo& type) noexcept { return {*type.tree_, *type.node_}; }
};

}  // namespace corv::typeinfo
