#include "util/hierarchy_separator.h"

#include "platform/dynamic_library.h"

namespace corv::util {
namespace {

constexpr char kUsual = '\\';

// Asked once, when the library is attached: the base library may be unloaded later.
char separator = kUsual;

}  // namespace

char HierarchySeparator() noexcept {
    return separator;
}

void ReadHierarchySeparator() noexcept {
    const platform::DynamicLibrary base("quillbase");
    if (auto* const ask = base.Find<char()>("GetVHDLHierarchySeparator")) {
        separator = ask();
    }
}

void ResetHierarchySeparator() noexcept {
    separator = kUsual;
}

}  // namespace corv::util
