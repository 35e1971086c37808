#include "corv/library/library.h"

// Attaches the shared library when it is loaded. Nothing refers to this file, so a program that
// links the static library does not include it.
namespace {

const struct LoadHook {
    LoadHook() noexcept { corv::Attach(); }
    ~LoadHook() { corv::Detach(); }
} load_hook;

}  // namespace
