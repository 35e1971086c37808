#include <unistd.h>

#include "corv/stimulus/check_formula.h"
#include "corv/stimulus/custom_stimulus.h"
#include "corv/stimulus/event_files.h"
#include "corv/stimulus/stimulus.h"
#include "corv/stremo/events_stream_write.h"
#include "tests/support/foreign_reader.h"
#include "tests/support/test.h"

namespace corv::test {
namespace {

constexpr const char* kLogic = "e#9#std_logicc9 UX01ZWLH-";
constexpr const char* kBus = "a#28#std_logic_vector(1 downto 0)1 ricd1 0 e#9#std_logicc9 UX01ZWLH-";
// A recording of signals of some names, each of which changes at the time that is its number.
class NamedSignals {
public:
    NamedSignals(const std::string& name, const std::vector<std::string>& names)
        : path(testing::TempDir() + std::to_string(getpid()) + name) {
        const std::unique_ptr<IEventsStreamWrite> writer(stremo::CreateStreamWrite(path.c_str()));
        EXPECT_TRUE(writer);
        const std::int64_t none = -1;
        int handle = 0;
        for (const std::string& text : names) {
            if (text.ends_with("[]")) {  // a vector of two
                const std::string own = text.substr(0, text.size() - 2);
                writer->WriteCompositeSignal(100 + handle, 2, own.c_str(), -1, 1, 0, &none);
                writer->WriteTypeInfo(100 + handle, kBus);
                for (const char* const element : {"(1)", "(0)"}) {
                    writer->WriteScalarSignal(handle, element, 100, handle, 0, &none);
                    writer->WriteTypeInfo(handle++, kLogic);
                }
                continue;
            }
            writer->WriteScalarSignal(handle, text.c_str(), -1, handle, 0, &none);
            writer->WriteTypeInfo(handle++, kLogic);
        }
        const unsigned char value = 3;
        for (std::int64_t time = 0; time < handle; ++time) {
            EXPECT_TRUE(writer->WriteEvent(static_cast<int>(time), &time, &value, 1));
        }
        EXPECT_TRUE(writer->Close());
    }
    ~NamedSignals() { std::remove(path.c_str()); }
    NamedSignals(const NamedSignals&) = delete;
    NamedSignals& operator=(const NamedSignals&) = delete;

    std::string path;
};

class CustomNames : public testing::Test {
protected:
    CustomNames() { SetEventFileDeletion(false); }
    ~CustomNames() override { SetEventFileDeletion(true); }
};

TEST_F(CustomNames, TakesNamesAsPeopleWriteThem) {
    const NamedSignals file(
        "spelled.evt", {"t\\clk", "t\\CLK", "t\\a[]", "t\\a(0)", "t\\\\X/y\\\\q", "u.v", "t\\one"});
    const ForeignStream stream(file.path);
    const std::vector<std::pair<std::string, std::int64_t>> found{
        {"t\\clk", 0}, {"t.clk", 0},       {"t/clk", 0},  {"t.CLK", 1},  {"T.Clk", 0},
        {"t.a(1)", 2}, {"t/a[1]", 2},      {"T/A(0)", 4}, {"t.a(0)", 4}, {"/t/clk", 0},
        {".t.CLK", 1}, {"t.\\X/y\\.q", 5}, {"u\\v", 6},   {"u/v", 6},    {"t.one(3)", 7}};
    for (const auto& [name, time] : found) {
        for (const char* const where : {file.path.c_str(), ForeignStream::kName}) {
            CCustomStimulus custom;
            EXPECT_EQ(custom.Create(where, name.c_str()), 1) << name;
            EXPECT_EQ(custom.GetNextEventTime(-1), time) << name;
        }
    }
    for (const char* const name : {"t.\\X.y\\.q", "t", "t.a(2)", "t.c", "clk", "t.clk/x", "."}) {
        CCustomStimulus custom;
        EXPECT_EQ(custom.Create(file.path.c_str(), name), 0) << name;
    }
}

TEST_F(CustomNames, TakesHandlesOfReaders) {
    const NamedSignals file("handles.evt", {"t\\a(1)", "t\\a[]", "x"});
    using Reader = std::unique_ptr<stremo::IEventsStreamRead>;
    const auto open = [&] { return Reader(stremo::CreateStreamRead(file.path.c_str())); };
    CCustomStimulus custom;
    ASSERT_EQ(custom.CreateFrom(open(), 1), 1);
    const CCustomStimulus copy(custom);
    custom = copy;
    EXPECT_EQ(custom.GetNextEventTime(-1), 1);
    EXPECT_STREQ(custom.GetSignalTypeInfo(), kLogic);
    ASSERT_EQ(custom.CreateFrom(std::make_unique<ForeignReader>(open().release()), 3), 1);
    EXPECT_EQ(custom.GetNextEventTime(-1), 3);
    const CCustomStimulus none(custom);
    EXPECT_EQ(none.GetSignalTypeInfo(), nullptr);
    for (const int handle : {-1, 4, 101}) {  // 101 is the vector
        EXPECT_EQ(custom.CreateFrom(open(), handle), 0) << handle;
        EXPECT_EQ(custom.GetNextEventTime(-1), -1);
    }
    EXPECT_EQ(custom.CreateFrom(nullptr, 1), 0);
}

TEST_F(CustomNames, ProblemsAreToldWhereTheyStand) {
    const NamedSignals file("problems.evt", {"t\\u1\\clk", "t\\u2\\clk", "t\\bus[]", "t\\\\a b\\"});
    struct Row {
        bool vector;
        std::string formula;  // FILE stands for the recording
        std::string place;
        std::string told;
    };
    const std::vector<Row> rows{
        {false, "/custom FILE,  t.clk ", "t.clk", "did you mean `t.u1.clk` or `t.u2.clk`?"},
        {false, "/custom FILE, t.u1.clc", "t.u1.clc", "did you mean `t.u1.clk` or"},
        {false, "/custom FILE, t.\n", "t.", "one that it has is `t.u1.clk`"},
        {false, "/custom FILE, t.zzzzzz\nq", "t.zzzzzz\nq", "no signal `t.zzzzzz q`"},
        {false, "/custom FILE, t.buz(0)", "t.buz(0)", "did you mean `t.bus`?"},
        {false, "/custom FILE, \\a c\\", "\\a c\\", "did you mean `t\\\\a b\\`?"},
        {false, "/custom FILE, t.bus", "t.bus", "name one of them, such as `t.bus(1)`"},
        {true, "/custom FILE, t.u1.clk", "t.u1.clk", "is a single signal"},
        {false, "/custom no\n.evt , a", "no\n.evt", "no .evt"},
        {false, "/custom FILE", "/custom FILE", "such as `/custom run.evt, top.clk`"}};
    for (const Row& row : rows) {
        const auto in_place = [&](std::string text) {
            const std::size_t at = text.find("FILE");
            return at == std::string::npos ? text : text.replace(at, 4, file.path);
        };
        const std::string formula = in_place(row.formula);
        const auto problems =
            row.vector ? CheckVectorFormula(formula.c_str(), 2, 1) : CheckFormula(formula.c_str());
        ASSERT_EQ(problems.size(), 1U) << formula;
        EXPECT_EQ(formula.substr(problems[0].position, problems[0].length), in_place(row.place));
        EXPECT_NE(problems[0].sentence.find(row.told), std::string::npos) << problems[0].sentence;
        CStimulus stimulus;
        const bool refused = problems[0].severity == Problem::Severity::Error;
        EXPECT_TRUE(row.vector || (stimulus.Create(formula.c_str(), 0) == 0) == refused) << formula;
    }
    EXPECT_TRUE(CheckVectorFormula(("/custom " + file.path + ",t.bus").c_str(), 2, 1).empty());
}

}  // namespace
}  // namespace corv::test
