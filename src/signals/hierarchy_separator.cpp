#include "signals/hierarchy_separator.h"

#include "platform/dynamic_library.h"

namespace corv {
namespace {

constexpr char kUsual = '\\';

char separator = kUsual;

}  // namespace

char HierarchySeparator() noexcept {
    return separator;
}

void signals::ReadHierarchySeparator() noexcept {
    const platform::DynamicLibrary base("quillbase");
    if (auto* const ask = base.Find<char()>("GetVHDLHierarchySeparator")) {
        separator = ask();
    }
}

void signals::ResetHierarchySeparator() noexcept {
    separator = kUsual;
}

}  // namespace corv
