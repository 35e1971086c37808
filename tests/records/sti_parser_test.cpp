#include "corv/records/sti_parser.h"

#include "tests/support/test.h"

namespace corv::test {
namespace {

// The fields in record order, "~" for null, then the numbers.
std::string Show(const CStiParser& parser) {
    int type = 77;
    int strength = 77;
    bool active = true;
    std::string text;
    for (const char* const field :
         {parser.GetDialogID(), parser.GetStimType(&type), parser.GetStrength(&strength),
          parser.GetDialogData(), parser.GetInfoString(), parser.GetActive(&active),
          parser.GetStimStates()}) {
        text += std::string(field != nullptr ? field : "~") + ",";
    }
    return text + " " + std::to_string(type) + " " + std::to_string(strength) + " " +
           std::to_string(active);
}

const std::string kEmpty = "~,~,~,~,~,~,~, -1 -1 0";

// record | whether it is one | what it is read as
TEST(StiParser, ReadsRecords) {
    for (const auto& row : Table(R"(
        CLK:FRM:Drive:10.000000;1;0;0;50;0:clock:1: | 1 | CLK,FRM,Drive,10.000000;1;0;0;50;0,clock,1,, 0 16 1
        VAL:FRM:Default:x:y                         | 1 | VAL,FRM,Override,x,y,0,, 0 1 0
        VAL:KEY:strong:x:y:1:100;200                | 1 | VAL,KEY,Override,x,y,1,100;200, 1 1 1
        VAL: FRM: 	Drive: a: b: 1:                 | 1 | VAL,FRM,Drive, a, b, 1,, 0 16 1
        VAL:FRM:Drive::info:1:                      | 1 | VAL,FRM,Drive,info,1,0,, 0 16 0
        ::x:frm::dEPOSIT:                           | 1 | x,frm,dEPOSIT,,,0,, 0 8 0
        a:XYZ:OVERRIDE:c:d:-1x:e:f:g                | 1 | a,XYZ,OVERRIDE,c,d,-1x,e, -1 1 1
        a:key:override:c:d:x1:e                     | 1 | a,key,override,c,d,x1,e, 1 1 0
        VAL: :Drive                                 | 1 | VAL,,Drive,,,0,, -1 16 0
        VAL:FRM                                     | 0 | VAL,FRM,~,~,~,~,~, 0 -1 0
        :VAL:                                       | 0 | VAL,~,~,~,~,~,~, -1 -1 0
        :::                                         | 0 | ~,~,~,~,~,~,~, -1 -1 0)")) {
        CStiParser parser;
        EXPECT_EQ(parser.Init(row[0].c_str()), row[1] == "1") << row[0];
        EXPECT_EQ(Show(parser), row[2]) << row[0];
    }
}

TEST(StiParser, ReadsTheFieldsThatAreThere) {
    CStiParser parser;
    ASSERT_TRUE(parser.Init("CST:KEY:Deposit:a:b:1:c"));
    const std::string whole = Show(parser);
    EXPECT_FALSE(parser.Init(nullptr));
    EXPECT_FALSE(parser.Init(""));
    EXPECT_EQ(Show(parser), whole);
    // a record may be a text of the parser that reads it
    EXPECT_TRUE(parser.Init("V:F:Drive:x;y:p"));
    EXPECT_FALSE(parser.Init(parser.GetDialogData()));
    EXPECT_EQ(Show(parser), "x;y,~,~,~,~,~,~, -1 -1 0");
    EXPECT_TRUE(parser.Init(parser.GetDialogID(), 1, 8, nullptr, parser.GetDialogID(), true, ""));
    EXPECT_EQ(Show(parser), "x;y,KEY,Deposit,,x;y,1,, 1 8 1");
}

TEST(StiParser, BuildsRecordsOfKnownNumbers) {
    for (const auto& row : Table(R"(
        0 512 | CLK,FRM,Default,data,,0,, 0 512 0 ;; 1 1 | CLK,KEY,Override,data,,1,, 1 1 1
        0 8 | CLK,FRM,Deposit,data,,0,, 0 8 0 ;; 1 16 | CLK,KEY,Drive,data,,1,, 1 16 1
        -1 1 ;; 2 1 ;; 1073741824 8 ;; 0 0 ;; 1 4 ;; 1 -1 ;; 0 -512)")) {
        const auto numbers = Split(row[0], ' ');
        CStiParser parser;
        parser.Init("a:b:Drive");
        const std::string before = Show(parser);
        const int type = static_cast<int>(Int(numbers[0]));
        EXPECT_EQ(parser.Init("CLK", type, static_cast<int>(Int(numbers[1])), "data", nullptr,
                              type == 1, nullptr),
                  row.size() > 1);
        EXPECT_EQ(Show(parser), row.size() > 1 ? row[1] : before) << row[0];
    }
}

// record | what is written
TEST(StiParser, WritesRecords) {
    CString text("untouched");
    EXPECT_FALSE(CStiParser().MergeStimInfo(text));
    EXPECT_STREQ(text, "untouched");
    for (const auto& row : Table(R"(
        CLK:FRM:Drive:10.000000;1;0;0;50;0:clock:1: | CLK:FRM:Drive:10.000000;1;0;0;50;0:clock:1:
        VAL:FRM:Override:data:info:0:1ns;2ns        | VAL:FRM:Override:data:info:0:1ns;2ns
        a:b:drive                                   | a:b:drive:::0:
        VAL:FRM                                     | untouched)")) {
        CStiParser parser;
        parser.Init(row[0].c_str());
        text = "untouched";
        EXPECT_EQ(parser.MergeStimInfo(text), row[1] != "untouched");
        EXPECT_STREQ(text, row[1].c_str());
    }
}

// source | what the target "t,KEY,Deposit,..." is afterwards
TEST(StiParser, AssignsWhatItKnows) {
    for (const auto& row : Table(R"(
        val:frm:drive:a:b:01:c | val,FRM,Drive,a,b,1,c, 0 16 1
        val:frm:Default:a      | val,FRM,Override,a,,0,, 0 1 0
        val:XYZ:drive:a:b:01:c | t,KEY,Deposit,d,i,1,s, 1 8 1
        val:frm                | t,KEY,Deposit,d,i,1,s, 1 8 1)")) {
        CStiParser source;
        source.Init(row[0].c_str());
        CStiParser target;
        ASSERT_TRUE(target.Init("t", 1, 8, "d", "i", true, "s"));
        target = source;
        EXPECT_EQ(Show(target), row[1]);
        const CStiParser copy(source);
        EXPECT_EQ(Show(copy), row[1][0] == 't' ? kEmpty : row[1]);
    }
    CStiParser parser;
    ASSERT_TRUE(parser.Init("a:key:drive:b"));
    const CStiParser& same = parser;
    parser = same;
    EXPECT_EQ(Show(parser), "a,key,drive,b,,0,, 1 16 0");
}

// Two records are equal when no field tells them apart.
TEST(StiParser, ComparesField) {
    const std::string record = "VAL:FRM:Drive:a:b:1:c";
    std::string upper = record;
    std::transform(upper.begin(), upper.end(), upper.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    CStiParser parser;
    CStiParser other;
    EXPECT_TRUE(parser == other);
    ASSERT_TRUE(parser.Init(record.c_str()));
    EXPECT_FALSE(parser == other);
    ASSERT_TRUE(other.Init(upper.c_str()));
    EXPECT_TRUE(parser == other);
    for (const auto& row : Table(R"(
        CLK:FRM:Drive:a:b:1:c ;; VAL:KEY:Drive:a:b:1:c ;; VAL:FRM:Deposit:a:b:1:c
        VAL:FRM:Drive:x:b:1:c ;; VAL:FRM:Drive:a:x:1:c ;; VAL:FRM:Drive:a:b:01:c
        VAL:FRM:Drive:a:b:1:)")) {
        ASSERT_TRUE(other.Init(row[0].c_str()));
        EXPECT_FALSE(parser == other) << row[0];
        EXPECT_TRUE(parser != other) << row[0];
    }
    // what a parser lacks compares as empty
    ASSERT_FALSE(parser.Init("VAL:FRM"));
    ASSERT_TRUE(other.Init("val: frm: Drive"));
    EXPECT_FALSE(parser == other);
}

// code or name | string-table identifier | strength
TEST(StiParser, Names) {
    CStiParser::InitResources();
    for (const auto& row : Table(R"(
        vAL | 8 ;; frm | 9 ;; CLK | 10 ;; key | 11 ;; cst | 12 ;; PRD | 13
        deFAULT | 2 | 512 ;; override | 5 | 1 ;; DEPOSIT | 6 | 8 ;; Drive | 7 | 16)")) {
        CString name;
        EXPECT_TRUE(name.LoadString(static_cast<unsigned>(Int(row[1]))));
        EXPECT_EQ(CStiParser::StrengthValue(row[0].c_str()), row.size() > 2 ? Int(row[2]) : -1);
        EXPECT_STREQ(row.size() > 2 ? CStiParser::StrengthName(static_cast<int>(Int(row[2])))
                                    : CStiParser::DialogName(row[0].c_str()),
                     name);
    }
    for (const char* const unknown : {"", "XYZ", "CL", "CLKS", "Clock", "Drives"}) {
        EXPECT_EQ(CStiParser::DialogName(unknown), nullptr);
        EXPECT_EQ(CStiParser::StrengthValue(unknown), -1);
    }
    EXPECT_EQ(CStiParser::DialogName(nullptr), nullptr);
    EXPECT_EQ(CStiParser::StrengthValue(nullptr), -1);
    EXPECT_EQ(CStiParser::StrengthName(2), nullptr);
}

TEST(StiParser, FailsWithoutMemory) {
    CStiParser parser;
    CString text;
    const auto prepare = [&] {
        parser.Init("VAL", 0, 16, "data", "info", true, "states");
        text = "old";
    };
    FailEveryAllocation(
        prepare, [&] { return parser.Init("CLK:KEY:Drive:a:b:1:c"); },
        [&](bool result) {
            EXPECT_FALSE(result);
            EXPECT_EQ(Show(parser), kEmpty);
        });
    const auto show = [&] { return Show(parser) + std::string(text); };
    FailsUnchanged(
        prepare, [&] { return parser.Init("CLK", 1, 1, "a", "b", false, "c"); }, false, show);
    FailsLeaving(
        prepare, [&] { return parser.MergeStimInfo(text); }, false, [&] { return text; }, "");
}

}  // namespace
}  // namespace corv::test
