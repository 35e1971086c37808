#pragma once

#include <cstdint>

#include "corv/containers/signal_container.h"

namespace corv::tree {

// Calls an action with each member of a container, in order. The container can be null.
template <class Action>
void ForEachMember(ISignalContainer* members, Action action) {
    const int count = members != nullptr ? members->GetCount() : 0;
    for (int i = 0; i < count; ++i) {
        ISignal* member = nullptr;
        if (SUCCEEDED(members->GetAt(static_cast<std::uint32_t>(i), &member))) {
            action(*member);
        }
    }
}

}  // namespace corv::tree
