#include "corv/signals/hierarchy_separator.h"

#include "util/hierarchy_separator.h"

namespace corv {

char HierarchySeparator() noexcept {
    return util::HierarchySeparator();
}

}  // namespace corv
