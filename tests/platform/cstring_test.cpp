#include "corv/platform/cstring.h"

#include <new>

#include "corv/platform/cstring_array.h"
#include "tests/support/test.h"

namespace corv::test {
namespace {

const char* const kNull = nullptr;

TEST(CString, NullTextIsEmpty) {
    CString text(kNull);
    EXPECT_STREQ(text, "");
    text = "abc";
    text += kNull;
    EXPECT_STREQ(text + kNull, "abc");
    EXPECT_STREQ(kNull + text, "abc");
    EXPECT_EQ(text.Find(kNull), text.Find(""));
    EXPECT_GT(text.Compare(kNull), 0);
    text = kNull;
    EXPECT_TRUE(text == kNull);
    EXPECT_TRUE(text.IsEmpty());
    text.Format(kNull);
    EXPECT_EQ(text.GetLength(), 0);
}

// first, count | Left(count) | Right(count) | Mid(first, count) | Mid(first)
TEST(CString, PositionsAreCutToTheText) {
    const CString text("abcdef");
    for (const auto& row : Table(R"(
        0 | 0 | _ | _ | _ | abcdef ;; 1 | 2 | ab | ef | bc | bcdef ;; 6 | 1 | a | f | _ | _
        4 | 9 | abcdef | abcdef | ef | ef ;; 5 | 2147483647 | abcdef | abcdef | f | f
        -3 | 2147483647 | abcdef | abcdef | abcdef | abcdef
        2147483647 | 2147483647 | abcdef | abcdef | _ | _
        2147483647 | -2147483648 | _ | _ | _ | _)")) {
        const int first = static_cast<int>(Int(row[0]));
        const int count = static_cast<int>(Int(row[1]));
        EXPECT_EQ(std::string(text.Left(count)), row[2]) << count;
        EXPECT_EQ(std::string(text.Right(count)), row[3]) << count;
        EXPECT_EQ(std::string(text.Mid(first, count)), row[4]) << first << ' ' << count;
        EXPECT_EQ(std::string(text.Mid(first)), row[5]) << first;
    }
    for (const int outside : {-1, 6, 7, INT_MAX, INT_MIN}) {
        CString copy(text);
        copy.SetAt(outside, 'x');
        EXPECT_STREQ(copy, "abcdef");
        EXPECT_EQ(text[outside], '\0');
        EXPECT_EQ(text.Find("a", outside), -1) << outside;
        EXPECT_EQ(text.Find('a', outside), -1) << outside;
    }
    EXPECT_STREQ(CString('x', 3), "xxx");
    EXPECT_STREQ(CString('x', -3), "");
}

TEST(CString, FindAndChangesInPlace) {
    CString text("one two two");
    EXPECT_EQ(text.Find("two"), 4);
    EXPECT_EQ(text.Find("two", 5), 8);
    EXPECT_EQ(text.Find("two", 9), -1);
    EXPECT_EQ(text.Find("Two"), -1);
    EXPECT_EQ(text.Find('o', 7), 10);
    text = " \t\n\v\f\rAz[`{\xC4 \t\n\v\f\r";
    text.TrimLeft();
    EXPECT_EQ(text.GetLength(), 12);
    text.TrimRight();
    text.MakeUpper();
    EXPECT_STREQ(text, "AZ[`{\xC4");
    text.MakeLower();
    text.SetAt(1, 'Q');
    text += text;
    text += '!';
    EXPECT_STREQ(text.Right(7), "aQ[`{\xC4!");
    text = ' ';
    text.TrimRight();
    EXPECT_TRUE(text.IsEmpty());
}

TEST(CString, Format) {
    CString text("own");
    const std::int64_t all = -1;
    text.Format("%s|%I64i|%I64d|%I64u|%I64x|%I64X", static_cast<const char*>(text), INT64_MIN, all,
                UINT64_MAX, all, std::int64_t{0xABC});
    EXPECT_STREQ(text, "own|-9223372036854775808|-1|18446744073709551615|ffffffffffffffff|ABC");
    text.Format("%%I64i %-8I64d|%08I64X|%+I64i|%*I64d|I64i %s|%.0f|%i", std::int64_t{42},
                std::int64_t{255}, std::int64_t{7}, 3, std::int64_t{5}, "%I64i", 2.5e15, -3);
    EXPECT_STREQ(text, "%I64i 42      |000000FF|+7|  5|I64i %I64i|2500000000000000|-3");
    text.Format("<%s>", std::string(100'000, 'z').c_str());
    EXPECT_EQ(text.GetLength(), 100'002);
}

TEST(CString, Buffer) {
    CString text("abc");
    char* buffer = text.GetBuffer(10);
    EXPECT_STREQ(buffer, "abc");
    std::memcpy(buffer + 3, "defghij", 8);
    text.ReleaseBuffer();
    EXPECT_STREQ(text, "abcdefghij");
    EXPECT_EQ(text.GetLength(), 10);
    text.GetBuffer(0)[1] = '\0';
    text.ReleaseBuffer();
    EXPECT_EQ(text.GetLength(), 1);
    std::memcpy(text.GetBuffer(20), "0123456789", 10);
    text.ReleaseBuffer(4);
    EXPECT_STREQ(text.GetBuffer(-5), "0123");
    text.ReleaseBuffer(-1);
    EXPECT_STREQ(text, "0123");
}

TEST(CString, Comparisons) {
    for (const char* a : {"", "A", "AB", "B", "a", "\x80"}) {
        for (const char* b : {"", "A", "AB", "B", "a", "\x80"}) {
            const int expected = std::strcmp(a, b);  // bytes without sign
            const CString left(a);
            const CString right(b);
            EXPECT_TRUE((left < right) == (expected < 0) && (left <= b) == (expected <= 0) &&
                        (a > right) == (expected > 0) && (left == right) == (expected == 0) &&
                        (a != right) == (expected != 0) && (left.Compare(b) < 0) == (expected < 0))
                << a << ' ' << b;
        }
    }
    EXPECT_EQ(CString("aBc_").CompareNoCase("AbC_"), 0);
    EXPECT_LT(CString("ABC").CompareNoCase("abd"), 0);
    EXPECT_GT(CString("abc").CompareNoCase("AB"), 0);
    EXPECT_NE(CString("\xC4").CompareNoCase("\xE4"), 0);
    EXPECT_STREQ('a' + CString("b") + "c" + CString("d") + 'e', "abcde");
}

TEST(CString, StringTable) {
    CString text;
    for (const auto& row : Table("2|Default\n5|Override\n6|Deposit\n7|Drive\n8|Value\n9|Formula\n"
                                 "10|Clock\n11|Hotkey\n12|Custom\n13|Predefined")) {
        EXPECT_TRUE(text.LoadString(static_cast<unsigned>(Int(row[0]))));
        EXPECT_EQ(std::string(text), row[1]);
    }
    for (const unsigned id : {0U, 99'999U, UINT_MAX}) {
        text = "old";
        EXPECT_FALSE(text.LoadString(id));
        EXPECT_TRUE(text.IsEmpty());
    }
}

TEST(CStringArray, GrowsAndReadsOutside) {
    CStringArray list;
    EXPECT_EQ(list.Add("a"), 0);
    list.SetAtGrow(3, "d");
    list[1] = "b";
    list.SetAt(2, kNull);
    list.SetAt(4, "lost");
    list.SetAtGrow(-1, "lost");
    list[-1] = "lost";
    list[99] = "lost";
    EXPECT_EQ(list.GetSize(), 4);
    EXPECT_STREQ(list.GetAt(0) + list.GetAt(1) + list.GetAt(2) + list.GetAt(3), "abd");
    EXPECT_STREQ(list[99], "");
    EXPECT_STREQ(list.GetAt(-1), "");
    list.SetAtGrow(9, list[3]);  // the text given moves when the list grows
    while (list.GetSize() < 100) {
        list.Add(list[9]);
    }
    EXPECT_STREQ(list[99], "d");
    list.SetSize(2);
    EXPECT_STREQ(list[1], "b");
    EXPECT_STREQ(list[3], "");
    list.SetSize(-1);
    EXPECT_EQ(list.GetSize(), 0);
    list.Add("x");
    list.RemoveAll();
    EXPECT_EQ(list.GetSize(), 0);
}

TEST(CStringArray, RefusesAnIndexPastAllLengths) {
    CStringArray list;
    list.Add("a");
    EXPECT_THROW(list.SetAtGrow(INT_MAX, "b"), std::bad_alloc);
    EXPECT_EQ(list.GetSize(), 1);
    EXPECT_EQ(list.GetAt(0), "a");
}

}  // namespace
}  // namespace corv::test
