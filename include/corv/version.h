#pragma once

#include "corv/platform/export.h"

namespace corv {

// Returns the library's version, "major.minor.patch". The text is static.
CORV_API const char* Version() noexcept;

}  // namespace corv
