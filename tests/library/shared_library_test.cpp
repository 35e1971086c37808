// The shared library attaches itself when it is loaded and detaches when it is unloaded.

#include <dlfcn.h>
#include <malloc.h>
#include <unistd.h>

#include "tests/support/test.h"

namespace corv::test {
namespace {

// What this program allocated by itself and through what it has loaded.
std::size_t AllocatedBytes() {
    return mallinfo2().uordblks;
}

class SharedLibrary : public testing::Test {
protected:
    SharedLibrary() { std::filesystem::create_directory(folder_); }
    ~SharedLibrary() override { std::filesystem::remove_all(folder_); }

    static bool IsLoaded() {
        void* const library =
            dlopen(corv::test::SharedLibraryFile().c_str(), RTLD_NOW | RTLD_NOLOAD);
        return library != nullptr && dlclose(library) == 0;
    }

    // Loads a host, lets it work and unloads it with the library.
    char LoadUseUnload() const {
        void* const guest = dlopen(corv::test::GuestFile().c_str(), RTLD_NOW | RTLD_LOCAL);
        if (guest == nullptr) {
            ADD_FAILURE() << dlerror();
            return '\0';
        }
        using Function = char (*)(const char*, const char*);
        const auto use = reinterpret_cast<Function>(dlsym(guest, "UseCorv"));
        const char separator = use(by_path_.c_str(), by_name_.c_str());
        EXPECT_TRUE(IsLoaded());
        EXPECT_TRUE(std::filesystem::exists(by_path_)) << "it stays while the library is there";
        dlclose(guest);
        EXPECT_FALSE(IsLoaded());
        return separator;
    }

    const std::string folder_ = testing::TempDir() + "corv_shared_" + std::to_string(getpid());
    const std::string by_path_ = folder_ + "/by_path.evt";
    const std::string by_name_ = folder_ + "/by_name.evt";
};

TEST_F(SharedLibrary, DeletesWhatFormulasNamedWhenItGoes) {
    ASSERT_FALSE(IsLoaded());
    EXPECT_EQ(LoadUseUnload(), '\\');
    EXPECT_FALSE(std::filesystem::exists(by_path_));
    EXPECT_TRUE(std::filesystem::exists(by_name_)) << "a user's own recording";
}

TEST_F(SharedLibrary, AsksTheHostForTheSeparator) {
    void* const base = dlopen(corv::test::BaseLibraryFile().c_str(), RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(base, nullptr) << dlerror();
    EXPECT_EQ(LoadUseUnload(), '/');
    dlclose(base);
}

// The sanitizers' build looks for what is lost besides. The loader's own tables grow with the first
// loads.
TEST_F(SharedLibrary, LeavesNothingBehind) {
    constexpr std::size_t kLoads = 100;
    for (std::size_t i = 0; i < kLoads; ++i) {
        LoadUseUnload();
    }
    const std::size_t before = AllocatedBytes();
    for (std::size_t i = 0; i < kLoads; ++i) {
        LoadUseUnload();
    }
    EXPECT_LT(AllocatedBytes(), before + 64 * kLoads);
}

}  // namespace
}  // namespace corv::test
