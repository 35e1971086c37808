#include "platform/ascii.h"
#include "tests/stremo/ghw/support.h"
#include "tests/support/test.h"
#include "typeinfo/named_types.h"

namespace corv::test {
namespace {

// What a simulation's value list, at femtoseconds, is in whole picoseconds.
std::vector<std::pair<std::int64_t, std::string>> ExpectedChanges(
    const std::vector<std::string>& fields) {
    std::vector<std::pair<std::int64_t, std::string>> changes;
    for (std::size_t i = 3; i < fields.size(); ++i) {
        const std::size_t blank = fields[i].find(' ');
        const std::int64_t time = std::stoll(fields[i].substr(0, blank)) / 1000;
        if (!changes.empty() && changes.back().first == time) {
            changes.pop_back();
        }
        changes.emplace_back(time, fields[i].substr(blank + 1));
    }
    return changes;
}

// Whether a value is the one of the expected list, which has control characters in small letters,
// reals with other digits and blanks in names.
bool IsValue(const SeenSignal& leaf, const std::string& value, std::string expected) {
    if (leaf.type[0] == 'f') {
        return std::strtod(value.c_str(), nullptr) == std::strtod(expected.c_str(), nullptr);
    }
    if (expected[0] == '\'') {
        return value == expected;
    }
    std::replace(expected.begin(), expected.end(), ' ', '\xA0');
    return platform::EqualNoCase(value, expected);
}

class GhwSamples : public testing::TestWithParam<const char*> {};

TEST_P(GhwSamples, HaveTheirExpectedValues) {
    const std::string name = GetParam();
    const auto reader = OpenGhwBytes(GhwSample(name + ".ghw"));
    ASSERT_NE(reader, nullptr) << LastStreamError();
    const std::vector<SeenSignal> leaves = SeenLeaves(*reader).leaves;
    std::istringstream expected(GhwSample(name + ".expected"));
    std::string line;
    std::getline(expected, line);
    const std::int64_t end = std::stoll(line.substr(4)) / 1000;
    for (const SeenSignal& leaf : leaves) {
        ASSERT_TRUE(std::getline(expected, line));
        std::vector<std::string> fields = Split(line, '\t');
        std::replace(fields[0].begin(), fields[0].end(), HierarchySeparator(), '.');
        EXPECT_EQ(leaf.name, fields[0]);
        EXPECT_EQ(leaf.handle, std::stoi(fields[1]));
        EXPECT_EQ(leaf.latest, end);
        const auto changes = ExpectedChanges(fields);
        ASSERT_EQ(leaf.changes.size(), changes.size()) << line;
        for (std::size_t i = 0; i < changes.size(); ++i) {
            EXPECT_EQ(leaf.changes[i].first, changes[i].first) << line;
            EXPECT_TRUE(IsValue(leaf, leaf.changes[i].second, changes[i].second))
                << line << "\n"
                << leaf.changes[i].second;
        }
    }
    EXPECT_FALSE(std::getline(expected, line)) << line;
}

INSTANTIATE_TEST_SUITE_P(All, GhwSamples,
                         testing::Values("tb_scalars", "tb_composite", "tb_hier", "tb_delta"));

TEST(GhwTypes, OfSamplesAreWrittenOut) {
    const auto rows = Table(R"(
        tb_scalars   | tb_scalars.clk            | e#9#std_logicc9 UX01ZWLH-
        tb_scalars   | tb_scalars.nine           | e#10#std_ulogicc9 UX01ZWLH-
        tb_scalars   | tb_scalars.b              | e#3#bitc2 01
        tb_scalars   | tb_scalars.st             | e#7#state_ts6 idle load run_fast '? \Extended@Lit\ done
        tb_scalars   | tb_scalars.i              | i#7#integerrict-2147483648 2147483647
        tb_scalars   | tb_scalars.n              | i#7#naturalrict0 2147483647
        tb_scalars   | tb_scalars.sm             | i#7#small_trict-8 7
        tb_scalars   | tb_scalars.r              | f#4#realrrct-1.79769e+308 1.79769e+308
        tb_scalars   | tb_scalars.t              | f#4#timerrct-9.22337e+18 9.22337e+18
        tb_scalars   | tb_scalars.dl             | f#12#delay_lengthrrct0 9.22337e+18
        tb_scalars   | tb_scalars.ohm_s          | i#5#res_trict0 1000000000
        tb_scalars   | tb_scalars.sev            | e#14#severity_levels4 note warning error failure
        tb_hier      | tb_hier.blk.in_blk        | i#7#integerrict0 15
        tb_composite | tb_composite.nul          | a#28#std_logic_vector(0 downto 1)1 ricd0 1 e#9#std_logicc9 UX01ZWLH-
        tb_composite | tb_composite.s            | a#18#signed(3 downto 0)1 ricd3 0 e#9#std_logicc9 UX01ZWLH-
        tb_composite | tb_composite.mat          | a#24#mat_t(0 to 1,2 downto 0)2 rict0 1 ricd2 0 e#9#std_logicc9 UX01ZWLH-
        tb_composite | tb_composite.byop         | a#15#by_op_t(0 to 2)1 rict0 2 e#3#bitc2 01
        tb_composite | tb_composite.boos         | a#15#bools_t(1 to 3)1 rict1 3 e#7#booleans2 false true
        tb_composite | tb_composite.mem(3)       | a#28#std_logic_vector(7 downto 0)1 ricd7 0 e#9#std_logicc9 UX01ZWLH-
        tb_composite | tb_composite.nst.head.op  | e#4#op_ts3 nop rd wr
    )");
    for (const auto& row : rows) {
        const auto reader = OpenGhwBytes(GhwSample(row[0] + ".ghw"));
        const SeenLeaves seen(*reader);
        std::vector<std::string> found = seen.composites;
        for (const SeenSignal& leaf : seen.leaves) {
            found.push_back(leaf.name + " " + leaf.type);
        }
        std::string expected = row[1] + " " + row[2];
        std::replace(expected.begin(), expected.end(), '@', '\xA0');
        const auto match = std::find_if(found.begin(), found.end(), [&](const std::string& text) {
            return text.substr(0, text.find_last_not_of(' ') + 1) == expected;
        });
        EXPECT_NE(match, found.end()) << expected;
    }
    const auto reader = OpenGhwBytes(GhwSample("tb_scalars.ghw"));
    EXPECT_STREQ(reader->GetSignalProperty(14, "units"), "ohm = 1, kohm = 1000");
    EXPECT_EQ(reader->GetTypeString(5), typeinfo::kStandardTypes[5]);
}

}  // namespace
}  // namespace corv::test
