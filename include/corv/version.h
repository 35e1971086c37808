#pragma once

#include "corv/platform/export.h"

// The version of these headers: as three numbers, and as one number that compares, 10203 for 1.2.3.
#define CORV_VERSION_MAJOR 0
#define CORV_VERSION_MINOR 1
#define CORV_VERSION_PATCH 0
#define CORV_VERSION_NUMBER \
    (CORV_VERSION_MAJOR * 10000 + CORV_VERSION_MINOR * 100 + CORV_VERSION_PATCH)

namespace corv {

// Returns the version of the library that runs, "major.minor.patch". The text is static.
CORV_API const char* Version() noexcept;

}  // namespace corv
