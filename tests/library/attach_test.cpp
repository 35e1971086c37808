#include <dlfcn.h>

#include "corv/library/library.h"
#include "corv/signals/hierarchy_separator.h"
#include "tests/support/test.h"

namespace corv::test {
namespace {

// The host's base library lies where the system finds it; the tests build one.
TEST(Attach, AsksTheHostForTheSeparator) {
    EXPECT_EQ(HierarchySeparator(), '\\');
    Attach();
    Detach();
    EXPECT_EQ(HierarchySeparator(), '\\');
    // what is loaded already is found by its name
    void* const base = dlopen(corv::test::BaseLibraryFile().c_str(), RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(base, nullptr) << dlerror();
    Attach();
    EXPECT_EQ(HierarchySeparator(), '/');
    Attach();
    Detach();
    EXPECT_EQ(HierarchySeparator(), '/');
    Detach();
    EXPECT_EQ(HierarchySeparator(), '\\');
    Detach();  // one too many changes nothing
    dlclose(base);
}

}  // namespace
}  // namespace corv::test
