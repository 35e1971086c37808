#pragma once

#include <cstdint>

namespace corv::tree {

// Containers remember the names of their signals, which can change without their knowledge. A
// signal whose name is remembered therefore counts each change of its name here, for the whole
// library. What was remembered at a different count may be out of date.
std::uint64_t Renamings() noexcept;
void CountRenaming() noexcept;

}  // namespace corv::tree
