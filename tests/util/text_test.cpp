#include "corv/util/text.h"

#include "tests/support/test.h"

namespace corv::test {
namespace {

constexpr const char* kOpening = "([{\"'";
constexpr const char* kClosing = ")]}\"'";
constexpr const char* kBlanks = " \n\t";

using Taker = CString (*)(CString&);
CString Token(CString& source) {
    return NextToken(source, ",", kOpening, kClosing, kBlanks);
}
CString Word(CString& source) {
    return NextWord(source, kOpening, kClosing, kBlanks);
}
CString Braced(CString& source) {
    return _GetBracedWord(source, " \n\t,", kOpening, kClosing);
}

// Rows of: source | what is taken | what is left.
void ExpectTaken(Taker take, const char* table) {
    for (const auto& row : Table(table)) {
        CString source(row[0].c_str());
        EXPECT_STREQ(take(source), row[1].c_str()) << row[0];
        EXPECT_STREQ(source, row[2].c_str()) << row[0];
    }
}

TEST(Text, NextToken) {
    ExpectTaken(Token, R"(
        (a,b) 1, c 2 | (a,b) 1 | c 2 ;; a b,c,d | a b | c,d ;; a  ,b | a | b
        'x,y' 1,z | 'x,y' 1 | z ;; a "x,'",b | a "x,'" | b
        ((a,b),[c,d]),e | ((a,b),[c,d]) | e ;; (a],b),c | (a],b) | c ;; ([),a],b) | ([) | a],b)
        a),b | a) | b ;; (a,b | (a,b | _ ;; ((a),b | ((a),b | _ ;; 'a,b | 'a,b | _ ;; a, | a | _
        _ | _ | _)");
    CString blanks(" \t");
    EXPECT_STREQ(Token(blanks), "");
    EXPECT_STREQ(blanks, "");
    CString source("a;(b,c");
    EXPECT_STREQ(NextToken(source, ",;", "", "", kBlanks), "a");
    EXPECT_STREQ(NextToken(source, ",;", "", "", kBlanks), "(b");
}

TEST(Text, NextWord) {
    ExpectTaken(Word, R"(
        (a b) 1 | (a b) | 1 ;; abc  def g | abc | def g ;; 'a b' 10 | 'a b' | 10
        (a (b c) d) e | (a (b c) d) | e ;; 'a 'b' c | 'a ' | b' c ;; (a b)c | (a b) | c
        a(b c) | a(b | c) ;; [a )] b | [a )] | b ;; {a | {a | _ ;; (a (b) c | (a (b) c | _
        a,b c | a,b | c ;; _ | _ | _)");
    CString source(" \t\n\"a b\"\n10");
    EXPECT_STREQ(Word(source), "\"a b\"");
    EXPECT_STREQ(source, "10");
}

TEST(Text, BracedWords) {
    ExpectTaken(Braced, R"(
        (a,b),c | (a,b) | c ;; red, green blue | red | green blue
        (a (b,c)) 'd e',f | (a (b,c)) | 'd e',f ;; 'd e',f | 'd e' | f ;; "a,b" | "a,b" | _
        (a,b | (a,b | _ ;; _ | _ | _)");
    const struct {
        const char* separators;
        const char* table;
    } sets[] = {{"", "(a b)|a b\n\"01XZ\"|01XZ\n'1'|1\nabc|abc\na, b|a, b\n((a))|(a)\n'a|'a\n()|_"},
                {", ", "(a,b),c|a,b\na,b|a\n[a {b}] c|a {b}\n'a b'|a b\n(a b|(a b"}};
    for (const auto& set : sets) {
        for (const auto& row : Table(set.table)) {
            CString source(row[0].c_str());
            EXPECT_STREQ(GetBracedWord(source, set.separators, kOpening, kClosing), row[1].c_str());
            EXPECT_STREQ(source, row[0].c_str());  // only _GetBracedWord consumes
        }
    }
}

TEST(Text, Trim) {
    const struct {
        const char* text;
        const char* characters;
        const char* trimmed;
    } rows[] = {
        {" ,a b,\t", " ,\t", "a b"}, {",,,", ",", ""}, {"aba", "a", "b"},      {"", ",", ""},
        {" a ", "", " a "},          {"xa", "x", "a"}, {" a ", nullptr, " a "}};
    for (const auto& row : rows) {
        CString text(row.text);
        Trim(text, row.characters);
        EXPECT_STREQ(text, row.trimmed) << row.text;
    }
}

TEST(Text, FindMatching) {
    for (const auto& row : Table(R"(
        (a(b)c)d | ) | 6 ;; () | ) | 1 ;; (() | ) | -1 ;; "a"b" | " | 2 ;; (a]b) | ) | 4
        [([)]] | ] | 5 ;; ((()())()) | ) | 9 ;; ( | ) | -1 ;; ' | ' | -1 ;; _ | ) | -1)")) {
        std::string text = row[0];
        const char* const match = FindMatching(row[1][0], text.data());
        EXPECT_EQ(match ? match - text.data() : -1, Int(row[2])) << text;
    }
    EXPECT_EQ(FindMatching(')', nullptr), nullptr);
}

// However a text is cut off, taking its parts ends, and they stand in the text in this order with
// nothing but separators between.
TEST(Text, PartsOfTruncatedTexts) {
    const std::string whole = "(a,(b c)) 'x,y' [1, {2 \"q\"}], z\t,, (((\n\"w w\" 'v)],";
    for (const Taker take : {Token, Word, Braced}) {
        for (std::size_t length = 0; length <= whole.size(); ++length) {
            const std::string text = whole.substr(0, length);
            CString source(text.c_str());
            std::size_t at = 0;
            while (!source.IsEmpty()) {
                const int before = source.GetLength();
                const std::string part = take(source).GetBuffer(0);
                ASSERT_LT(source.GetLength(), before) << text;
                const std::size_t found = text.find(part, at);
                ASSERT_NE(found, std::string::npos) << text;
                ASSERT_GE(text.find_first_not_of(" \n\t,", at), found) << text;
                at = found + part.size();
            }
            ASSERT_EQ(text.find_first_not_of(" \n\t,", at), std::string::npos) << text;
        }
    }
}

}  // namespace
}  // namespace corv::test
