#pragma once

#include "corv/platform/export.h"

namespace corv {

// The separator between the levels of hierarchical names: what the function
// `char GetVHDLHierarchySeparator()` of the host's base library (QUILLBASE.DLL on Windows,
// libquillbase.so elsewhere) gave when this library was attached, "\" without such a function.
CORV_API char HierarchySeparator() noexcept;

}  // namespace corv
