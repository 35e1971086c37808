#pragma once

#include <cstdint>

#include "corv/containers/signal_container.h"
#include "corv/signals/signal.h"
#include "tree/nesting.h"

namespace corv::tree {

// A walk over the leaves of a subtree, depth first. It limits the depth and the number of signals
// it visits, so it ends on any tree, even on one that contains itself.
class LeafWalk {
public:
    // Calls `enter` with each composite signal, which returns whether its members are visited, and
    // `leaf` with each leaf until that returns false. Returns whether it never did.
    template <class Enter, class Leaf>
    bool Visit(ISignal& signal, const Enter& enter, const Leaf& leaf) {
        ISignalContainer* const members = signal.GetSubSignals();
        if (members == nullptr) {
            return leaf(signal);
        }
        if (depth_ == kMostNesting || !enter(signal)) {
            return true;
        }
        ++depth_;
        ISignal* member = nullptr;
        bool more = true;
        for (std::uint32_t i = 0; more && left_ > 0 && SUCCEEDED(members->GetAt(i, &member)); ++i) {
            --left_;
            more = Visit(*member, enter, leaf);
        }
        --depth_;
        return more;
    }

private:
    int depth_ = 0;
    int left_ = 4 * 1'048'576;  // more signals than a type or a recording makes
};

}  // namespace corv::tree
