#pragma once

namespace corv::platform {

// A shared library of the host, which stays loaded as long as this object lives.
class DynamicLibrary {
public:
    // For the base name "base" this loads "BASE.DLL" on Windows and "libbase.so" elsewhere, from
    // wherever the system looks for libraries. Nothing is loaded if there is no such library.
    explicit DynamicLibrary(const char* base_name) noexcept;
    DynamicLibrary(const DynamicLibrary&) = delete;
    DynamicLibrary& operator=(const DynamicLibrary&) = delete;
    ~DynamicLibrary();

    // Returns an exported function, null if the library was not loaded or has no function of that
    // name.
    template <class Function>
    Function* Find(const char* name) const noexcept {
        return reinterpret_cast<Function*>(Address(name));
    }

private:
    void* Address(const char* name) const noexcept;

    void* handle_ = nullptr;
};

}  // namespace corv::platform
