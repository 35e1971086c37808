#include "corv/util/extended_id.h"

#include "tests/support/test.h"

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

// The rest of a name from the beginning of a level, and what of it is that level's name; # is a
// blank at its end.
constexpr const char* kLevels = R"(
a\b\          | _
\clk          | \clk
\esc!id       | \esc!id
\esc!id(1)    | \esc!id(1)
\a.b\         | \a.b\
\a.b\.c       | \a.b\
\a.b\/c       | \a.b\
\a.b\\c       | \a.b\\c
\a.b\(1)      | \a.b\
\a.b\[1]      | \a.b\
\My Sig\\x\   | \My Sig\\x\
\my sig\x\    | \my sig\x\
\a / b\.c     | \a / b\
\u/r[0] \q    | \u/r[0]#
\u/r[0] .q    | \u/r[0]#
\u/r[0] \\q   | \u/r[0]#
\u/r[0] .\q\  | \u/r[0]#
\a \          | \a \
)";

TEST(EscapedName, EndsAsItsLanguageEndsIt) {
    for (const auto& row : Table(kLevels)) {
        std::string name = row[1];
        std::replace(name.begin(), name.end(), '#', ' ');
        EXPECT_EQ(row[0].substr(0, EscapedNameLength(row[0], '\\')), name) << row[0];
    }
    EXPECT_EQ(EscapedNameLength("\\x y\\:z", ':'), 5U);
    EXPECT_EQ(EscapedNameLength("", '.'), 0U);
}

}  // namespace
}  // namespace corv::test
