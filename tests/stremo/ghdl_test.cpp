// Designs that are simulated when the tests run: both recordings of one run must tell the same, and
// the same still when they are written and read again or replayed.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "corv/stimulus/stimulus.h"
#include "corv/stremo/events_stream_read.h"
#include "corv/stremo/streams.h"
#include "corv/stremo/vcd_writer.h"
#include "corv/typeinfo/type_info.h"
#include "tests/stremo/reader_support.h"
#include "tests/support/other_programs.h"
#include "tests/support/paths.h"
#include "tests/support/table.h"

namespace corv::test {
namespace {

using Reader = std::unique_ptr<stremo::IEventsStreamRead>;

// ---- what a recording says ----

// A scalar, or a text as a whole.
struct Recorded {
    std::string name;  // as the recording has it
    std::int64_t latest = -1;
    bool is_text = false;
    bool is_character = false;
    std::vector<std::pair<std::int64_t, std::string>> changes;  // one for each time
    std::vector<double> numbers;  // of each change: the position of a literal, or the value
};

// The name in the one form for all formats: a[1].b, a(1)\b and a(1).b are "a|1|b".
std::string CommonName(const std::string& name) {
    std::string common;
    for (const char c : name) {
        const bool between = std::string_view("\\.()[], ").find(c) != std::string_view::npos;
        if (!between) {
            common += c;
        } else if (!common.empty() && common.back() != '|') {
            common += '|';
        }
    }
    return common.substr(0, common.find_last_not_of('|') + 1);
}

// All signals of a recording by their common names.
class Recording {
public:
    explicit Recording(stremo::IEventsStreamRead& reader) : reader_(reader) {
        for (int i = 0; i < reader.GetSignalCount(); ++i) {
            Add(reader.GetSignalHandle(i), "", nullptr);
        }
        const std::int64_t start = 0;
        EXPECT_TRUE(reader.Seek(&start)) << LastStreamError();
        for (int handle; (handle = reader.Next()) != -1;) {
            unsigned char bytes[16] = {};
            EXPECT_TRUE(reader.ReadValue(bytes));
            for (const Place& place : by_handle_[handle]) {
                Take(place, *reader.GetCurrentTime(), bytes);
            }
        }
    }

    std::map<std::string, Recorded> signals;

private:
    struct Place {
        Recorded* signal;
        const KTypeInfo* type;
        std::size_t character;  // of a text
    };

    static bool IsCharacter(const KTypeInfo& type) {
        return type.GetTypeIdentifier() == CString("character");
    }
    const KTypeInfo& TypeOf(const std::string& text) {
        std::unique_ptr<KTypeInfo>& type = types_[text];
        type = type != nullptr ? std::move(type) : std::make_unique<KTypeInfo>(CString(text));
        return *type;
    }

    Recorded* Signal(const std::string& name, std::int64_t latest) {
        Recorded& signal = signals[CommonName(name)];
        signal.name = name;
        signal.latest = latest;
        return &signal;
    }

    void Add(int handle, const std::string& above, Recorded* text, std::size_t index = 0) {
        const SignalInfo info(reader_, handle);
        const std::string name = above + info.name;
        const KTypeInfo& type = TypeOf(info.type);
        if (!info.composite) {
            Recorded* const signal = Signal(name, info.latest);
            signal->is_character = IsCharacter(type);
            by_handle_[handle].push_back({signal, &type, 0});
            if (text != nullptr) {
                by_handle_[handle].push_back({text, &type, index});
            }
            return;
        }
        const bool is_text =
            type.GetKind() == KTypeInfo::KindArray && IsCharacter(type.GetArrayElementKTypeInfo());
        Recorded* const whole = is_text ? Signal(name, info.latest) : nullptr;
        if (is_text) {
            whole->is_text = true;
            texts_[whole].assign(static_cast<std::size_t>(info.members), ' ');
        }
        for (int i = 0; i < info.members; ++i) {
            Add(reader_.GetSubSignalHandle(handle, i), name, whole, static_cast<std::size_t>(i));
        }
    }

    void Take(const Place& place, std::int64_t time, const unsigned char* bytes) {
        Recorded& signal = *place.signal;
        std::string value(place.type->GetValueString(bytes, 10, 0, -1).View());
        double number = std::strtod(value.c_str(), nullptr);
        if (place.type->GetKind() == KTypeInfo::KindEnum) {
            number = bytes[0];
        }
        if (signal.is_text) {
            std::string& text = texts_[&signal];
            text[place.character] = static_cast<char>(bytes[0]);
            value = text.substr(0, text.find_last_not_of(" \0") + 1);
        }
        if (!signal.changes.empty() && signal.changes.back().first == time) {
            signal.changes.pop_back();
            signal.numbers.pop_back();
        }
        if (signal.changes.empty() || signal.changes.back().second != value) {
            signal.changes.emplace_back(time, value);
            signal.numbers.push_back(number);
        }
    }

    stremo::IEventsStreamRead& reader_;
    std::map<int, std::vector<Place>> by_handle_;
    std::map<std::string, std::unique_ptr<KTypeInfo>> types_;
    std::map<Recorded*, std::string> texts_;
};

// ---- simulating ----

struct Design {
    const char* name;     // of the file and of its top
    const char* flags;    // for all steps
    std::size_t signals;  // scalars that both recordings have, at least
    // Signals that only GHW has, and others that follow them: "signal | factor | the other one".
    const char* mirrors;
};
void PrintTo(const Design& design, std::ostream* out) {
    *out << design.name << " " << design.flags;
}

class GhdlDesigns : public testing::TestWithParam<Design> {
protected:
    void SetUp() override {
        if (!HasProgram("ghdl")) {
            GTEST_SKIP() << "ghdl is not installed";
        }
        const std::string top = GetParam().name;
        const std::string flags = std::string(GetParam().flags) + " ";
        const std::string source = corv::test::TestFolder() + "/data/ghdl/" + top + ".vhd";
        ASSERT_TRUE(folder_.Run("ghdl -a " + flags + "'" + source + "' && ghdl -e " + flags + top +
                                " && ghdl -r " + flags + top + " --stop-time=200ns --wave=" + kGhw +
                                " --vcd=" + kVcd))
            << folder_.Log();
    }

    Reader Open(const std::string& file) const {
        Reader reader(stremo::CreateStreamRead(folder_.Path(file).c_str()));
        EXPECT_NE(reader, nullptr) << LastStreamError();
        return reader;
    }

    static constexpr const char* kGhw = "run.ghw";
    static constexpr const char* kVcd = "run.vcd";
    TemporaryFolder folder_;
};

// Values in the form that all formats know: literals without apostrophes, characters as they are,
// of boolean the digits.
std::vector<std::pair<std::int64_t, std::string>> CommonChanges(const Recorded& signal) {
    auto changes = signal.changes;
    for (std::size_t i = 0; i < changes.size(); ++i) {
        std::string& value = changes[i].second;
        value = value == "false" ? "0" : value == "true" ? "1" : value;
        if (signal.is_character) {
            value = static_cast<char>(signal.numbers[i]);
        }
        if (value.size() == 3 && value.front() == '\'' && value.back() == '\'') {
            value = value.substr(1, 1);
        }
        if (value.starts_with('\\')) {  // blanks of extended identifiers
            std::replace(value.begin(), value.end(), '\xA0', ' ');
        }
    }
    return changes;
}

TEST_P(GhdlDesigns, AreRecordedAlike) {
    const Reader ghw_reader = Open(kGhw);
    const Reader vcd_reader = Open(kVcd);
    ASSERT_TRUE(ghw_reader != nullptr && vcd_reader != nullptr);
    Recording ghw(*ghw_reader);
    Recording vcd(*vcd_reader);
    std::size_t common = 0;
    for (const auto& [name, signal] : vcd.signals) {
        // generates that count literals have no names there
        if (name.find("|?|") == std::string::npos) {
            ASSERT_TRUE(ghw.signals.contains(name)) << name;
            EXPECT_EQ(ghw.signals[name].name, signal.name);
            EXPECT_EQ(CommonChanges(ghw.signals[name]), CommonChanges(signal)) << name;
            EXPECT_EQ(ghw.signals[name].latest, signal.latest) << name;
            ++common;
        }
    }
    EXPECT_GE(common, GetParam().signals);
    for (const auto& row : Table(GetParam().mirrors)) {
        const std::string scope = GetParam().name + std::string(".");
        const Recorded& signal = ghw.signals[CommonName(scope + row[0])];
        const Recorded& mirror = vcd.signals[CommonName(scope + row[2])];
        EXPECT_GT(signal.changes.size(), 1U) << row[0];
        ASSERT_EQ(signal.changes.size(), mirror.changes.size()) << row[0];
        for (std::size_t i = 0; i < signal.changes.size(); ++i) {
            EXPECT_EQ(signal.changes[i].first, mirror.changes[i].first) << row[0];
            EXPECT_DOUBLE_EQ(signal.numbers[i] * std::stod(row[1]), mirror.numbers[i]) << row[0];
        }
    }
}

// Everything that GHW tells stands in the written VCD file.
TEST_P(GhdlDesigns, AreWrittenWithoutLoss) {
    for (const char* const file : {kGhw, kVcd}) {
        const Reader reader = Open(file);
        ASSERT_NE(reader, nullptr);
        const Recording before(*reader);
        VcdOptions options;
        options.raw_names = true;
        ASSERT_TRUE(WriteVcd(*reader, folder_.Path("again.vcd").c_str(), options))
            << LastStreamError();
        const Reader again = Open("again.vcd");
        ASSERT_NE(again, nullptr);
        Recording after(*again);
        EXPECT_TRUE(GetStreamNotes(*again).empty());
        for (const auto& [name, signal] : before.signals) {
            ASSERT_TRUE(after.signals.contains(name)) << name;
            EXPECT_EQ(CommonChanges(after.signals[name]), CommonChanges(signal)) << name;
        }
    }
}

TEST_P(GhdlDesigns, DriveStimuli) {
    const Reader reader = Open(kGhw);
    ASSERT_NE(reader, nullptr);
    const Recording recording(*reader);
    const std::string path = folder_.Path(kGhw);
    ASSERT_TRUE(
        stremo::RegisterStream("ghdl", [path] { return stremo::CreateStreamRead(path.c_str()); }));
    for (const auto& [name, signal] : recording.signals) {
        if (signal.is_text) {
            continue;
        }
        CStimulus stimulus;
        EXPECT_EQ(stimulus.Create(("/custom ghdl, " + signal.name).c_str(), 0), 1) << signal.name;
        std::vector<std::pair<std::int64_t, std::string>> events;
        for (std::int64_t time = -1; (time = stimulus.GetNextEventTime(time)) >= 0;) {
            CString value;
            EXPECT_EQ(stimulus.GetValue(time, value), 1);
            events.emplace_back(time, std::string(value.View()));
        }
        EXPECT_EQ(events, signal.changes) << signal.name;
    }
    EXPECT_TRUE(stremo::UnregisterStream("ghdl"));
}

constexpr const char* kMirrors = R"(
    pairs(3,true).op                      | 1     | op_number
    pairs(2,false).res                    | 1     | ohms
    span                                  | 0.001 | picoseconds
    nests('1').pair(7,true).res           | 1     | nested_ohms
    nests(\Extended op\).pair(7,true).op | 1     | nested_op
    pairs(3,true).data(0)                 | 1     | data(0)
    level                                 | 0.5   | half
)";
constexpr const char* kOpenMirrors = R"(
    word.valid       | 1 | valid
    word.data(2)     | 1 | data(2)
    words(1).data(0) | 1 | second(0)
    lists(3)(1)      | 1 | list(1)
)";
constexpr const char* kTreeMirrors = R"(
    word(6)  | 1     | word_number
    letter   | 1     | letter_number
    way      | 0.001 | way_number
)";

INSTANTIATE_TEST_SUITE_P(All, GhdlDesigns,
                         testing::Values(Design{"mirror", "", 13, kMirrors},
                                         Design{"mirror", "--time-resolution=ps", 13, kMirrors},
                                         Design{"open08", "--std=08", 10, kOpenMirrors},
                                         Design{"tree", "", 50, kTreeMirrors}));

}  // namespace
}  // namespace corv::test
