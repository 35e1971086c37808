#pragma once

#include "corv/typeinfo/type_info.h"
#include "typeinfo/type_tree.h"

namespace corv::typeinfo {

// Leads from the hosts' view of a type to the library's own, so that the public class need not
// expose it.
class TypeAccess {
public:
    // Returns the view of a type that is not KindNone. It is valid as long as the type lives.
    static TypeView ViewOf(const KTypeInfo& type) noexcept { return {*type.tree_, *type.node_}; }
};

}  // namespace corv::typeinfo
