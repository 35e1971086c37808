#pragma once

namespace corv::util {

// What corv::HierarchySeparator returns.
char HierarchySeparator() noexcept;
// Asks the host's base library for the separator; without an answer it stays as it is.
void ReadHierarchySeparator() noexcept;
// Back to what it is before anybody has been asked.
void ResetHierarchySeparator() noexcept;

}  // namespace corv::util
