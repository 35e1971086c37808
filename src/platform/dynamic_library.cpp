#include "platform/dynamic_library.h"

#include <algorithm>
#include <string>

#include "platform/ascii.h"
#include "platform/guard.h"

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace corv::platform {
namespace {

#if defined(_WIN32)

std::string FileName(std::string base) {
    std::transform(base.begin(), base.end(), base.begin(), Upper);
    return base + ".DLL";
}
void* Open(const char* name) noexcept {
    return LoadLibraryA(name);
}
void Close(void* handle) noexcept {
    FreeLibrary(static_cast<HMODULE>(handle));
}
void* Look(void* handle, const char* name) noexcept {
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle), name));
}

#else

std::string FileName(std::string base) {
    std::transform(base.begin(), base.end(), base.begin(), Lower);
    return "lib" + base + ".so";
}
void* Open(const char* name) noexcept {
    return dlopen(name, RTLD_NOW | RTLD_LOCAL);
}
void Close(void* handle) noexcept {
    dlclose(handle);
}
void* Look(void* handle, const char* name) noexcept {
    return dlsym(handle, name);
}

#endif

}  // namespace

DynamicLibrary::DynamicLibrary(const char* base_name) noexcept {
    Done([&] { handle_ = Open(FileName(base_name).c_str()); });
}

DynamicLibrary::~DynamicLibrary() {
    if (handle_ != nullptr) {
        Close(handle_);
    }
}

void* DynamicLibrary::Address(const char* name) const noexcept {
    return handle_ != nullptr ? Look(handle_, name) : nullptr;
}

}  // namespace corv::platform
