#pragma once

namespace corv::util {

// What corv::HierarchySeparator returns. It is kept here, below recordings and signals, since both
// build hierarchical names.
char HierarchySeparator() noexcept;
// Asks the host's base library for the separator; without an answer the separator does not change.
void ReadHierarchySeparator() noexcept;
// Restores the separator that holds before anybody has been asked.
void ResetHierarchySeparator() noexcept;

}  // namespace corv::util
