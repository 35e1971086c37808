#include "corv/records/hot_key_data.h"

#include "tests/support/test.h"

namespace corv::test {
namespace {

// key | text | data
TEST(HotKeyData, WritesAndReadsBack) {
    for (const auto& row : Table(R"(
        65 | abc | 65/abc ;; 0 | x y | 0/x y
        4294967295 | a;b | -1/a;b ;; 2147483648 | k | -2147483648/k ;; 2147483647 | k | 2147483647/k)")) {
        const auto key = static_cast<unsigned long>(Int(row[0]));
        CString data;
        MergeHotKeyData(key, row[1].c_str(), data);
        EXPECT_STREQ(data, row[2].c_str());
        unsigned long read = 77;
        CString text;
        EXPECT_TRUE(ParseHotKeyData(data, &read, text));
        EXPECT_EQ(read, key);
        EXPECT_STREQ(text, row[1].c_str());
    }
    CString data;
    MergeHotKeyData(5, nullptr, data);
    EXPECT_STREQ(data, "5/");
    MergeHotKeyData(6, data, data);
    EXPECT_STREQ(data, "6/5/");
}

// data | whether it is read | key, 77 when not set | text
TEST(HotKeyData, ReadsAnyText) {
    for (const auto& row : Table(R"(
        65/ | 0 | 65 | _ ;; 65 | 0 | 65 | _ ;; _ | 0 | 77 | _ ;; // | 0 | 77 | _
        /65/abc | 1 | 65 | abc ;; 65//a/b | 1 | 65 | a ;; abc | 0 | 0 | _ ;; abc/d | 1 | 0 | d
        4294967295/k | 1 | 4294967295 | k ;; 2147483648/k | 1 | 2147483648 | k ;; -1/k | 1 | 4294967295 | k
        +7x/k | 1 | 7 | k ;; 99999999999/k | 1 | 2147483647 | k ;; -99999999999/k | 1 | 2147483648 | k)")) {
        unsigned long key = 77;
        CString text("old");
        EXPECT_EQ(ParseHotKeyData(row[0].c_str(), &key, text), row[1] == "1") << row[0];
        EXPECT_EQ(key, static_cast<unsigned long>(Int(row[2]))) << row[0];
        EXPECT_STREQ(text, row[3].c_str()) << row[0];
    }
    CString text("65/abc");
    EXPECT_TRUE(ParseHotKeyData(text, nullptr, text));
    EXPECT_STREQ(text, "abc");
    EXPECT_FALSE(ParseHotKeyData(nullptr, nullptr, text));
    EXPECT_STREQ(text, "");
}

TEST(HotKeyData, FailsWithoutMemory) {
    const std::string data = "1/" + std::string(100, 'x');
    CString text;
    const auto prepare = [&] { text = "old"; };
    const auto show = [&] { return text; };
    FailsLeaving(
        prepare, [&] { return ParseHotKeyData(data.c_str(), nullptr, text); }, false, show, "");
    FailsLeaving(
        prepare, [&] { return MergeHotKeyData(1, data.c_str(), text), 0; }, 0, show, "");
}

}  // namespace
}  // namespace corv::test
