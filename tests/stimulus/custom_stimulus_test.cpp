#include "corv/stimulus/custom_stimulus.h"

#include <unistd.h>

#include "corv/library/library.h"
#include "corv/stimulus/check_formula.h"
#include "corv/stimulus/event_files.h"
#include "corv/stimulus/formula_parser.h"
#include "corv/stimulus/stim_iterator.h"
#include "corv/stimulus/stimulus.h"
#include "corv/stremo/events_stream_write.h"
#include "corv/stremo/streams.h"
#include "tests/support/foreign_reader.h"
#include "tests/support/test.h"

namespace corv::test {
namespace {

constexpr const char* kLogic = "e#9#std_logicc9 UX01ZWLH-";
constexpr const char* kBus = "a#28#std_logic_vector(1 downto 0)1 ricd1 0 e#9#std_logicc9 UX01ZWLH-";
constexpr std::string_view kLetters = "UX01ZWLH-";

using Changes = std::vector<std::pair<std::int64_t, unsigned char>>;

// A recording of scalars of std_logic and one bus, whose events are known.
class RecordedFile {
public:
    RecordedFile(const std::string& name, std::uint32_t seed)
        : path(testing::TempDir() + std::to_string(getpid()) + name) {
        std::unique_ptr<IEventsStreamWrite> writer(stremo::CreateStreamWrite(path.c_str()));
        EXPECT_TRUE(writer) << LastStreamError();
        const std::int64_t end = 1000;
        for (int handle = 0; handle < 4; ++handle) {
            EXPECT_TRUE(writer->WriteScalarSignal(handle, ("Sig" + std::to_string(handle)).c_str(),
                                                  -1, handle, 0, &end));
        }
        EXPECT_TRUE(writer->WriteCompositeSignal(9, 2, "Bus", -1, 4, 0, &end));
        EXPECT_TRUE(writer->WriteScalarSignal(5, "(1)", 9, 0, 0, &end));
        EXPECT_TRUE(writer->WriteScalarSignal(4, "(0)", 9, 1, 0, &end));
        for (int handle = 0; handle < 6; ++handle) {
            EXPECT_TRUE(writer->WriteTypeInfo(handle, kLogic));
        }
        EXPECT_TRUE(writer->WriteTypeInfo(9, kBus));
        Random random(seed);
        for (std::int64_t time = 3; time < end;
             time += static_cast<std::int64_t>(random.Below(9))) {
            const int handle = static_cast<int>(random.Below(6));
            const auto value = static_cast<unsigned char>(random.Below(9));
            EXPECT_TRUE(writer->WriteEvent(handle, &time, &value, 1));
            if (changes[handle].empty() || changes[handle].back().first != time) {
                changes[handle].emplace_back(time, value);
            }
            changes[handle].back().second = value;  // of several at one time the last one counts
        }
        EXPECT_TRUE(writer->Close());
    }
    ~RecordedFile() { std::remove(path.c_str()); }
    RecordedFile(const RecordedFile&) = delete;
    RecordedFile& operator=(const RecordedFile&) = delete;

    std::int64_t Next(int handle, std::int64_t time) const {
        for (const auto& change : changes.at(handle)) {
            if (change.first > time) {
                return change.first;
            }
        }
        return -1;
    }
    std::string Value(int handle, std::int64_t time) const {
        std::string value;
        for (const auto& change : changes.at(handle)) {
            if (change.first <= time) {
                value = kLetters[change.second];
            }
        }
        return value;
    }

    std::string path;
    std::map<int, Changes> changes;
};

class CustomStimulus : public testing::Test {
protected:
    CustomStimulus() { SetEventFileDeletion(false); }
    ~CustomStimulus() override { SetEventFileDeletion(true); }
};

// The recording's own events, through the index of a reader of the library and through the
// operations of any reader, asked in random order.
TEST_F(CustomStimulus, AnswersWhatWasRecorded) {
    for (std::uint32_t seed = 1; seed <= 5; ++seed) {
        const RecordedFile file("custom.evt", seed);
        const ForeignStream stream(file.path);
        const std::pair<std::string, int> signals[] = {{"sig2", 2}, {"SIG0", 0}, {"bus(0)", 4}};
        for (const auto& [name, handle] : signals) {
            CCustomStimulus own;
            CCustomStimulus foreign(20);
            ASSERT_EQ(own.Create(file.path.c_str(), name.c_str()), 1) << LastStreamError();
            ASSERT_EQ(foreign.Create("HOST:stream", name.c_str()), 1) << LastStreamError();
            EXPECT_STREQ(own.GetSignalTypeInfo(), kLogic);
            Random random(seed);
            for (int i = 0; i < 300; ++i) {
                const auto time = static_cast<std::int64_t>(random.Below(1100)) - 20;
                for (CCustomStimulus* stimulus : {&own, &foreign}) {
                    ASSERT_EQ(stimulus->GetNextEventTime(time), file.Next(handle, time)) << time;
                    CString value("old");
                    const std::string expected = file.Value(handle, time);
                    ASSERT_EQ(stimulus->GetValue(time, value), expected.empty() ? 0 : 1) << time;
                    ASSERT_EQ(std::string(value.View()), expected.empty() ? "old" : expected)
                        << time;
                }
            }
            EXPECT_EQ(own.GetNextEventTime(INT64_MAX), -1);
            EXPECT_EQ(own.GetNextEventTime(INT64_MIN), file.Next(handle, -1));
        }
    }
}

TEST_F(CustomStimulus, IteratorsWalkTheEvents) {
    const RecordedFile file("custom.evt", 7);
    CStimulus stimulus;
    ASSERT_EQ(stimulus.Create(("/CUSTOM  " + file.path + " ,  Sig1 ").c_str(), 0), 1)
        << LastStreamError();
    EXPECT_TRUE(stimulus.IsCustom());
    EXPECT_STREQ(stimulus.GetSignalTypeInfo(), kLogic);
    CString formula("old");
    stimulus.GenerateFormula(formula);
    EXPECT_TRUE(formula.IsEmpty());

    CStimIterator events(&stimulus);
    for (int round = 0; round < 2; ++round) {
        for (const auto& [time, value] : file.changes.at(1)) {
            CStimIterator copy(events);
            for (CStimIterator* iterator : {&copy, &events}) {
                const CSimpleStimulus* const element = iterator->Next();
                ASSERT_NE(element, nullptr);
                EXPECT_EQ(element->GetTime(), time);
                EXPECT_EQ(element->Absolute(), 1);
                CString text;
                element->GetValue(text);
                EXPECT_EQ(text[0], kLetters[value]);
            }
        }
        EXPECT_EQ(events.Next(), nullptr);  // and starts over
    }
    stimulus.Destroy();
    EXPECT_FALSE(stimulus.IsCustom());
    EXPECT_EQ(stimulus.GetSignalTypeInfo(), nullptr);
}

TEST_F(CustomStimulus, CopiesShareNothing) {
    const RecordedFile file("custom.evt", 3);
    auto first = std::make_unique<CCustomStimulus>();
    ASSERT_EQ(first->Create(file.path.c_str(), "sig3"), 1);
    CCustomStimulus copy(*first);
    CCustomStimulus assigned;
    assigned = copy;
    first.reset();
    copy.Destroy();
    EXPECT_EQ(copy.GetNextEventTime(0), -1);
    EXPECT_EQ(assigned.GetNextEventTime(0), file.Next(3, 0));
    assigned = copy;
    EXPECT_EQ(assigned.GetNextEventTime(0), -1);
    EXPECT_EQ(assigned.GetSignalTypeInfo(), nullptr);
}

TEST_F(CustomStimulus, RefusesWhatIsNotThere) {
    const RecordedFile file("custom.evt", 3);
    CCustomStimulus custom;
    CString value;
    EXPECT_EQ(custom.Create("/nowhere/run.evt", "sig1"), 0);
    EXPECT_NE(*LastStreamError(), '\0');
    EXPECT_EQ(custom.Create(file.path.c_str(), "sig"), 0);
    EXPECT_EQ(custom.Create(nullptr, nullptr), 0);
    EXPECT_EQ(custom.GetValue(5, value), 0);
    EXPECT_EQ(custom.GetNextEventTime(-1), -1);
    // a composite signal has no events of its own
    EXPECT_EQ(custom.Create(file.path.c_str(), "bus"), 1);
    EXPECT_EQ(custom.GetNextEventTime(-1), -1);
    CStimulus stimulus;
    const std::vector<std::string> refused{"/custom",
                                           "/custom " + file.path,
                                           "/custom " + file.path + ",",
                                           "/custom ,sig1",
                                           "/custom " + file.path + ",other",
                                           "/custom no.evt,sig1"};
    for (const std::string& text : refused) {
        EXPECT_EQ(stimulus.Create(text.c_str(), 0), 0) << text;
        EXPECT_FALSE(CheckFormula(text.c_str()).empty()) << text;
    }
    EXPECT_TRUE(CheckFormula(("/custom " + file.path + ",sig1").c_str()).empty());
}

TEST_F(CustomStimulus, FormulasOfABusAreCutIntoItsMembers) {
    const RecordedFile file("custom.evt", 3);
    std::string lower = file.path;
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    CStringArray list;
    list.Add("old");
    EXPECT_EQ(CFormulaParser().Run(("/custom " + file.path + ", BUS, more").c_str(), list, 7, 0),
              1);
    ASSERT_EQ(list.GetSize(), 2);
    EXPECT_EQ(std::string(list[0]), "/custom " + lower + ",Bus(1)");
    EXPECT_EQ(std::string(list[1]), "/custom " + lower + ",Bus(0)");
    CStimulus element;
    ASSERT_EQ(element.Create(list[1], 0), 1);
    EXPECT_EQ(element.GetNextEventTime(-1), file.Next(4, -1));

    list.Add("third");
    EXPECT_EQ(CFormulaParser().Run(("/custom " + file.path + ",nobody").c_str(), list, 2, 0), 0);
    EXPECT_EQ(list.GetSize(), 3);
    EXPECT_EQ(CFormulaParser().Run(("/custom " + file.path + ",sig1").c_str(), list, 2, 0), 0);
    EXPECT_EQ(list.GetSize(), 0);  // a scalar has no members
}

// What looks like a selection may belong to the name of a signal.
TEST_F(CustomStimulus, FindsNamesWithParentheses) {
    const std::string path = testing::TempDir() + std::to_string(getpid()) + "names.evt";
    const std::vector<std::string> names{
        "t\\gen(0)\\a", "t\\gen(1)\\bus", "t\\gen(1)\\bus(2)\\b", "t\\\\x(1).y\\\\c", "(1)", "gen"};
    std::unique_ptr<IEventsStreamWrite> writer(stremo::CreateStreamWrite(path.c_str()));
    ASSERT_TRUE(writer);
    for (int i = 0; i < 6; ++i) {
        const std::int64_t none = -1;
        if (i == 1) {
            EXPECT_TRUE(writer->WriteCompositeSignal(9, 1, names[1].c_str(), -1, 1, 0, &none));
            EXPECT_TRUE(writer->WriteTypeInfo(9, kBus));
        }
        const char* const name = i == 1 ? "(1)" : names[static_cast<std::size_t>(i)].c_str();
        EXPECT_TRUE(writer->WriteScalarSignal(i, name, -1, i, 0, &none));
        EXPECT_TRUE(writer->WriteTypeInfo(i, kLogic));
    }
    const unsigned char value = 3;
    for (std::int64_t time = 0; time < 6; ++time) {
        EXPECT_TRUE(writer->WriteEvent(static_cast<int>(time), &time, &value, 1));
    }
    EXPECT_TRUE(writer->Close());
    const std::vector<std::pair<std::string, std::int64_t>> found{{"T\\Gen(0)\\a", 0},
                                                                  {"t\\gen(1)\\bus(1)", 1},
                                                                  {"t\\gen(1)\\bus(2)\\b", 2},
                                                                  {names[3], 3},
                                                                  {"(1)", 4},
                                                                  {"gen(1)", 5}};
    for (const auto& [name, time] : found) {
        CCustomStimulus custom;
        EXPECT_EQ(custom.Create(path.c_str(), name.c_str()), 1) << name;
        EXPECT_EQ(custom.GetNextEventTime(-1), time) << name;
    }
    for (const char* const name : {"t\\gen(2)\\a", "t\\gen(1)\\bus(2)", "t\\gen(0)\\ab", ""}) {
        CCustomStimulus custom;
        EXPECT_EQ(custom.Create(path.c_str(), name), 0) << name;
    }
    std::remove(path.c_str());
}

// Files named in formulas go when the library is detached, recordings of registered names stay.
TEST(EventFiles, AreDeletedAtTheEnd) {
    for (const bool deletion : {true, false}) {
        const RecordedFile named("named.evt", 1);
        const RecordedFile registered("registered.evt", 1);
        const ForeignStream stream(registered.path);
        Attach();
        CStimulus stimulus;
        EXPECT_EQ(stimulus.Create(("/custom " + named.path + ",sig1").c_str(), 0), 1);
        EXPECT_EQ(stimulus.Create("/custom host:stream,sig1", 0), 1);
        EXPECT_EQ(stimulus.Create("/custom /nowhere/missing.evt,sig1", 0), 0);
        const std::string folder = testing::TempDir() + std::to_string(getpid()) + "folder.evt";
        std::filesystem::create_directory(folder);
        EXPECT_EQ(stimulus.Create(("/custom " + folder + ",sig1").c_str(), 0), 0);
        stimulus.Destroy();
        SetEventFileDeletion(deletion);
        Detach();
        EXPECT_NE(std::filesystem::exists(named.path), deletion);
        EXPECT_TRUE(std::filesystem::exists(registered.path));
        EXPECT_TRUE(std::filesystem::remove(folder));  // it is no file and stays
    }
}

}  // namespace
}  // namespace corv::test
