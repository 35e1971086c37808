// What long waves take of a process and leave behind.

#if __has_include(<sys/resource.h>)
#include <sys/resource.h>
#endif
#if defined(__GLIBC__)
#include <malloc.h>
#endif

#include "platform/address_range.h"
#include "tests/support/test.h"
#include "tests/waves/naive_wave.h"

namespace corv::test {
namespace {

constexpr std::size_t kMiB = std::size_t{1} << 20;

std::vector<WavePtr> LongWaves(std::size_t count, std::int64_t events) {
    std::vector<WavePtr> waves(count);
    std::generate(waves.begin(), waves.end(), [] { return NewWave(); });
    std::size_t refused = 0;
    for (std::int64_t time = 0; time < events; ++time) {
        for (const WavePtr& wave : waves) {
            refused += wave->AddEvent(time, 0, &time, 4) != S_OK ? 1 : 0;
        }
    }
    EXPECT_EQ(refused, 0U);
    return waves;
}

// Bytes of addresses and of memory in place; 0 where that can't be told.
struct ProcessMemory {
    ProcessMemory() {
#if defined(__GLIBC__)
        malloc_trim(0);
#endif
        std::ifstream("/proc/self/statm") >> addresses >> resident;
        const auto page = std::size_t{4096};
        addresses *= page;
        resident *= page;
    }
    // A process that is watched by a sanitizer has terabytes of addresses.
    bool IsPlain() const {
        return addresses > 0 && addresses < (std::size_t{1} << 40);
    }

    std::size_t addresses = 0;
    std::size_t resident = 0;
};

#if __has_include(<sys/resource.h>)
TEST(WaveMemory, LeavesAHostItsAddresses) {
    rlimit before{};
    if (!ProcessMemory().IsPlain() || getrlimit(RLIMIT_AS, &before) != 0) {
        GTEST_SKIP() << "the addresses cannot be limited here";
    }
    const rlimit limit{8'000'000'000, before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_AS, &limit), 0);
    const std::vector<WavePtr> waves = LongWaves(60, 60'000);
    void* const own = std::malloc(64 * kMiB);
    EXPECT_NE(own, nullptr);
    std::free(own);
    void* const most = std::malloc(4000 * kMiB);
    EXPECT_NE(most, nullptr);
    std::free(most);
    setrlimit(RLIMIT_AS, &before);
}
#endif

TEST(WaveMemory, LeavesLittleBehind) {
    platform::AddressRange::ReleaseKept();
    const ProcessMemory before;
    if (!before.IsPlain()) {
        GTEST_SKIP() << "the memory of waves cannot be told here";
    }
    for (const std::int64_t events : {60'000, 200'000}) {
        LongWaves(20, events);
        EXPECT_LE(ProcessMemory().resident, before.resident + 5 * kMiB) << events;
    }
}

}  // namespace
}  // namespace corv::test
