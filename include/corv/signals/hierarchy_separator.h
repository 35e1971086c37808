#pragma once

#include "corv/platform/export.h"

namespace corv {

// Returns the separator between the levels of hierarchical names. It is what the function `char
// GetVHDLHierarchySeparator()` of the host's base library (QUILLBASE.DLL on Windows,
// libquillbase.so elsewhere) returned when this library was attached, or "\" if there is no such
// function.
CORV_API char HierarchySeparator() noexcept;

}  // namespace corv
