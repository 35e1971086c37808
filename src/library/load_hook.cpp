#include "corv/library/library.h"

// The shared library attaches itself when it is loaded. Nothing refers to this file, so a program
// that links the static library does not take it in.
namespace {

const struct LoadHook {
    LoadHook() noexcept { corv::Attach(); }
    ~LoadHook() { corv::Detach(); }
} load_hook;

}  // namespace
