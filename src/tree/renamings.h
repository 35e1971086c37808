#pragma once

#include <cstdint>

namespace corv::tree {

// Containers remember the names of their signals, which may change without their knowledge. So a
// signal whose name is remembered counts each change of it here, for the whole library: nothing
// that was learnt at another count may be relied on.
std::uint64_t Renamings() noexcept;
void CountRenaming() noexcept;

}  // namespace corv::tree
