// Designs that are simulated when the tests run: both recordings of one run must tell the same, and
// the same still when they are written and read again or replayed.

#include "corv/stimulus/stimulus.h"
#include "corv/stremo/events_stream_read.h"
#include "corv/stremo/streams.h"
#include "corv/stremo/vcd_writer.h"
#include "corv/typeinfo/type_info.h"
#include "tests/stremo/reader_support.h"
#include "tests/support/other_programs.h"
#include "tests/support/test.h"

namespace corv::test {
namespace {

using Reader = std::unique_ptr<stremo::IEventsStreamRead>;

// ---- what a recording says ----

// A scalar, or a text as a whole.
struct Recording : SeenSignal {
    void Take(const RecordedSignal& signal, std::int64_t time,
              const std::vector<std::optional<std::uint64_t>>& values) {
        std::string text;
        for (const auto& value : values) {
            text += is_text ? static_cast<char>(value.value_or(' ')) : '?';
        }
        text =
            is_text ? text.substr(0, text.find_last_not_of(" \0") + 1) : signal.Text(*values[0], 0);
        Add(time, text);
        if (numbers.size() < changes.size()) {
            const bool is_literal = signal.kind->GetKind() == KTypeInfo::KindEnum;
            numbers.push_back(is_literal ? static_cast<double>(*values[0])
                                         : std::strtod(text.c_str(), nullptr));
        }
    }

    bool is_text = false;
    bool is_character = false;
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
std::map<std::string, Recording> Read(stremo::IEventsStreamRead& reader) {
    const Recorded recorded = AllOf(reader);
    std::map<std::string, Recording> all;
    for (std::size_t i = 0; i < recorded.signals.size(); ++i) {
        const RecordedSignal& signal = recorded.signals[i];
        const bool is_text =
            signal.info.composite && signal.kind->GetKind() == KTypeInfo::KindArray &&
            signal.kind->GetArrayElementKTypeInfo().GetTypeIdentifier() == CString("character");
        if (signal.info.composite && !is_text) {
            continue;
        }
        Recording& seen = all[CommonName(signal.path)];
        seen = {{signal.path, "", {}, signal.handle, signal.info.latest},
                is_text,
                signal.IsCharacter(),
                {}};
        recorded.ForEachMoment(
            i, [&](std::int64_t time, const auto& values) { seen.Take(signal, time, values); });
    }
    return all;
}

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
std::vector<std::pair<std::int64_t, std::string>> CommonChanges(const Recording& signal) {
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
    auto ghw = Read(*ghw_reader);
    auto vcd = Read(*vcd_reader);
    std::size_t common = 0;
    for (const auto& [name, signal] : vcd) {
        // generates that count literals have no names there
        if (name.find("|?|") == std::string::npos) {
            ASSERT_TRUE(ghw.contains(name)) << name;
            EXPECT_EQ(ghw[name].name, signal.name);
            EXPECT_EQ(CommonChanges(ghw[name]), CommonChanges(signal)) << name;
            EXPECT_EQ(ghw[name].latest, signal.latest) << name;
            ++common;
        }
    }
    EXPECT_GE(common, GetParam().signals);
    for (const auto& row : Table(GetParam().mirrors)) {
        const std::string scope = GetParam().name + std::string(".");
        const Recording& signal = ghw[CommonName(scope + row[0])];
        const Recording& mirror = vcd[CommonName(scope + row[2])];
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
        const auto before = Read(*reader);
        VcdOptions options;
        options.raw_names = true;
        ASSERT_TRUE(WriteVcd(*reader, folder_.Path("again.vcd").c_str(), options))
            << LastStreamError();
        const Reader again = Open("again.vcd");
        ASSERT_NE(again, nullptr);
        auto after = Read(*again);
        EXPECT_TRUE(GetStreamNotes(*again).empty());
        for (const auto& [name, signal] : before) {
            ASSERT_TRUE(after.contains(name)) << name;
            EXPECT_EQ(CommonChanges(after[name]), CommonChanges(signal)) << name;
        }
    }
}

TEST_P(GhdlDesigns, DriveStimuli) {
    const Reader reader = Open(kGhw);
    ASSERT_NE(reader, nullptr);
    const auto recording = Read(*reader);
    const std::string path = folder_.Path(kGhw);
    ASSERT_TRUE(
        stremo::RegisterStream("ghdl", [path] { return stremo::CreateStreamRead(path.c_str()); }));
    for (const auto& [name, signal] : recording) {
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
