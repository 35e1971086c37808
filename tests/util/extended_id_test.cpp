#include "corv/util/extended_id.h"

#include <gtest/gtest.h>

#include "tests/support/table.h"

namespace corv::test {
namespace {

// A name and what is left of it behind the identifier.
constexpr const char* kNames = R"(
_        | _
a        | a
a\b\     | a\b\
\a\      | _
\a\.b    | .b
\a.b\(1) | (1)
\a\\b\.c | .c
\a\\.c   | _
\a       | _
\        | _
\\       | _
\\\      | _
\\\\     | _
\\\\\.x  | _
\\a\\    | a\\
)";

TEST(ExtendedId, WhatIsLeftOfAName) {
    for (const auto& row : Table(kNames)) {
        EXPECT_EQ(SkipExtendedID(row[0].c_str()), row[1]) << row[0];
    }
    EXPECT_EQ(SkipExtendedID(nullptr), nullptr);
}

}  // namespace
}  // namespace corv::test
