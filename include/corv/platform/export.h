#pragma once

// CORV_API marks what the shared library exports; everything else stays hidden. Hosts that link the
// static library define CORV_STATIC (the CMake target does so for them).

#if defined(_WIN32)
#if defined(CORV_STATIC)
#define CORV_API
#elif defined(CORV_BUILDING)
#define CORV_API __declspec(dllexport)
#else
#define CORV_API __declspec(dllimport)
#endif
#else
#define CORV_API __attribute__((visibility("default")))
#endif
