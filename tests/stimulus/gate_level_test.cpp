#include "corv/stimulus/gate_level.h"

#include "tests/support/test.h"

namespace {

TEST(GateLevel, EveryCharacter) {
    const std::string from = "10HLXZRV.FUGSudlhx";
    const std::string to = "1010XZXXXX10XXXLHW";
    const std::string std_logic = "UX01ZWLH-";
    for (int code = -128; code < 128; ++code) {
        const char value = static_cast<char>(code);
        const std::size_t row = from.find(value);
        const bool known = row != std::string::npos;
        EXPECT_EQ(GateLevel2StdLogic(value), known ? to[row] : '\0') << code;
        EXPECT_EQ(GateLevel2StdLogicIndex(value),
                  known ? static_cast<int>(std_logic.find(to[row])) : -1)
            << code;
    }
}

}  // namespace
