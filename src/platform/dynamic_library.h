#pragma once

namespace corv::platform {

// A shared library of the host's that is loaded for as long as this object lives.
class DynamicLibrary {
public:
    // The base name stands for "base.DLL" on Windows and "libbase.so" elsewhere, in lower case
    // there; the system looks for it where it looks for libraries. Nothing is loaded when there is
    // none.
    explicit DynamicLibrary(const char* base_name) noexcept;
    DynamicLibrary(const DynamicLibrary&) = delete;
    DynamicLibrary& operator=(const DynamicLibrary&) = delete;
    ~DynamicLibrary();

    // An exported function, null when the library was not loaded or has none of that name.
    template <class Function>
    Function* Find(const char* name) const noexcept {
        return reinterpret_cast<Function*>(Address(name));
    }

private:
    void* Address(const char* name) const noexcept;

    void* handle_ = nullptr;
};

}  // namespace corv::platform
