#pragma once

#include <cstdint>

class ISignal;

namespace corv::containers {

// Containers remember the names of their signals, which may change without their knowledge. So a
// signal whose name is remembered counts each change of it here, for the whole library: nothing
// that was learnt at another count may be relied on.
std::uint64_t Renamings() noexcept;
void CountRenaming() noexcept;

// Lets a signal count the changes of its name from now on. False when it is of another make than
// this library's and can't.
bool WatchName(ISignal& signal) noexcept;

}  // namespace corv::containers
