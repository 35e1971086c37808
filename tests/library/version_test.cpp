#include "corv/version.h"

#include "tests/support/test.h"

namespace corv::test {
namespace {

// The headers' macros and the project's version are written in two places.
TEST(Version, IsThatOfTheHeaders) {
    EXPECT_EQ(Version(), std::to_string(CORV_VERSION_MAJOR) + "." +
                             std::to_string(CORV_VERSION_MINOR) + "." +
                             std::to_string(CORV_VERSION_PATCH));
}

}  // namespace
}  // namespace corv::test
