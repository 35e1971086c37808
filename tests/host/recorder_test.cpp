#include "host/recorder.h"

#include "corv/typeinfo/vhdl_type.h"
#include "host/recording.h"
#include "tests/support/other_programs.h"
#include "tests/support/test.h"

namespace corv::host {
namespace {

// An event each picosecond; the values repeat but for one that comes late.
class Scripted final : public Source {
public:
    Scripted(std::vector<std::string> values, std::int64_t late, std::string last)
        : values_(std::move(values)), late_(late), last_(std::move(last)) {}
    std::int64_t NextEvent(std::int64_t time) override {
        return time < late_ ? std::max<std::int64_t>(time + 1, 0) : -1;
    }
    std::optional<std::string> ValueAt(std::int64_t time) override {
        if (time < 0) {
            return std::nullopt;
        }
        return time >= late_ ? last_ : values_[static_cast<std::size_t>(time) % values_.size()];
    }
    std::int64_t NaturalEnd(std::int64_t start) override { return start + 16; }

private:
    std::vector<std::string> values_;
    std::int64_t late_;
    std::string last_;
};

// Records it and gives what is read again: its type, its last two values and its last time.
std::string Recorded(Scripted source, std::string type, TimeWindow window) {
    const test::TemporaryFolder folder;
    try {
        RecordSources({{"s", &source, {}, std::move(type), {}}}, folder.Path("s.evt"),
                      {window, false, {}});
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    const Recording recording(folder.Path("s.evt"));
    ISignal* signal = nullptr;
    recording.Signals().GetAt(0, &signal);
    recording.Load({signal}, {0, window.end + 1});
    std::string text;
    CString type_text;
    TypeToVhdl(signal->GetTypeInfo(), type_text);
    text += type_text.View();
    for (const std::int64_t time : {window.end - 1, window.end}) {
        text += std::string(" ") + signal->GetValueTextAt(time, FindAtOrBefore);
    }
    return text + " " + std::to_string(recording.LatestTime());
}

TEST(Recorder, TellsTypesByAllValues) {
    const std::vector<std::string> bits{"0", "1"};
    EXPECT_EQ(Recorded({bits, 999, "1"}, "", {0, 999}), "std_logic 0 1 999");
    EXPECT_EQ(Recorded({bits, 999, "7"}, "", {0, 999}), "integer 0 7 999");
    EXPECT_EQ(Recorded({bits, 999, "0.5"}, "", {0, 999}), "real 0 0.5 999");
    EXPECT_EQ(Recorded({{"a1", "b22"}, 999, "C"}, "", {5, 999}), "(C, a1, b22) a1 C 999");
    EXPECT_EQ(Recorded({bits, 999, "7"}, "i#7#integerrict-2147483648 2147483647", {0, 999}),
              "integer 0 7 999");
    EXPECT_NE(Recorded({bits, 999, "x y"}, "", {0, 999}).find("of no type"), std::string::npos);
    EXPECT_EQ(Recorded({bits, 9, "x"}, "i#7#integerrict-2147483648 2147483647", {0, 9}),
              "`x`, at 9ps, is not a value of the type");
}

// Many texts are looked through, and a few of them kept.
TEST(Recorder, TellsTypesByManyValues) {
    std::vector<std::string> numbers;
    for (int i = 0; i < 5'000; ++i) {
        numbers.push_back(std::to_string(i));
    }
    EXPECT_EQ(Recorded({numbers, 9'999, "0.5"}, "", {0, 9'999}), "real 4998 0.5 9999");
    EXPECT_EQ(Recorded({numbers, 9'999, "-1"}, "", {0, 9'999}), "integer 4998 -1 9999");
}

TEST(Recorder, EstimatesEvents) {
    Scripted source({"0", "1"}, 1'000'000'000, "1");
    EXPECT_EQ(EstimateEvents(source, {0, 99}), 100);
    EXPECT_NEAR(EstimateEvents(source, {500, 50'000'000}), 5e7, 1e6);
    EXPECT_EQ(EstimateEvents(source, {2'000'000'000, 3'000'000'000}), 0);
}

}  // namespace
}  // namespace corv::host
