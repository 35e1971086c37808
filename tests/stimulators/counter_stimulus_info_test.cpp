#include "corv/stimulators/counter_stimulus_info.h"

#include "tests/support/test.h"

namespace corv::test {
namespace {

using Info = CCounterStimulusInfo;

Info Make(int type, int dir, int radix, const char* start, const char* increment,
          const char* period, bool reverse) {
    Info info;
    info.SetType(static_cast<Info::Type>(type));
    info.SetDir(static_cast<Info::Dir>(dir));
    info.SetDisplayRadix(radix);
    info.SetStartingValue(start);
    info.SetIncrementBy(increment);
    info.SetCountPeriod(period);
    info.SetReverseBitOrder(reverse);
    return info;
}

using TextGetter = bool (Info::*)(char*, int) const noexcept;
constexpr TextGetter kTextGetters[] = {&Info::GetStartingValue, &Info::GetIncrementBy,
                                       &Info::GetCountPeriod};

// All fields in their order, an empty text as "-".
std::string Show(const Info& info) {
    std::string out = std::to_string(info.GetType()) + ' ' + std::to_string(info.GetDir()) + ' ' +
                      std::to_string(info.GetDisplayRadix());
    for (const TextGetter get : kTextGetters) {
        char text[200] = "old";
        const bool filled = (info.*get)(text, sizeof text);
        EXPECT_EQ(filled, *text != '\0');
        out += std::string(" ") + (filled ? text : "-");
    }
    return out + (info.GetReverseBitOrder() ? " 1" : " 0");
}

const char* const kBefore = "5 2 8 s i p 1";  // fields before each text is read
Info MakeBefore() {
    return Make(5, 2, 8, "s", "i", "p", true);
}

// text | whether it is read | fields afterwards
const char* const kTable = R"(
    \counter\type\2\dir\1\radix\16\start\ff\inc\1\period\5\rev\1      | 1 | 2 1 16 ff 1 5 1
    \COUNTER\Type\2\DIR\1\rAdIx\16\START\Ff\INC\1\PERIOD\5NS\REV\0    | 1 | 2 1 16 Ff 1 5NS 0
    counter\TYPE\1\DIR\1\RADIX\10\START\0\INC\1\PERIOD\5\REV\0        | 1 | 1 1 10 0 1 5 0
    \\counter\\\TYPE\\1\\DIR\\1\\RADIX\\10\\START\\0\\INC\\1\\PERIOD\\5\\\REV\\0\\ | 1 | 1 1 10 0 1 5 0
    counter\TYPE\9\DIR\-3\RADIX\99\START\?\INC\a b\PERIOD\soon\REV\7\MORE\1 | 1 | 9 -3 99 ? a b soon 1
    counter\TYPE\ 3x\DIR\x\RADIX\+8\START\0\INC\1\PERIOD\5\REV\-1     | 1 | 3 0 8 0 1 5 1
    counter\TYPE\1\DIR\1\RADIX\10\START\0\INC\1\PERIOD\5\REV\yes      | 1 | 1 1 10 0 1 5 0
    counter\DIR\1\TYPE\2\RADIX\10\START\0\INC\1\PERIOD\5\REV\0        | 0 | 5 2 8 s i p 1
    counter\TYPE\1\RADIX\10\DIR\1\START\0\INC\1\PERIOD\5\REV\0        | 0 | 1 2 8 s i p 1
    counter\TYPE\1\TYPE\2\DIR\1\RADIX\10\START\0\INC\1\PERIOD\5\REV\0 | 0 | 1 2 8 s i p 1
    counter\TYPE\1\DIR\1\RADIX\10\START\\INC\1\PERIOD\5\REV\0         | 0 | 1 1 10 INC i p 1
    counter\TYPE\1\DIR\1\RADIX\10\START\0\1\INC\1\PERIOD\5\REV\0      | 0 | 1 1 10 0 i p 1
    counter\TYPE\1\DIR\1\RADIX\10\START\0\INC\1\PERIOD\5\REVERSE\0    | 0 | 1 1 10 0 1 5 1
    counter\TYPE\TYPE\DIR\DIR\RADIX\RADIX\START\START\INC\INC\PERIOD\REV\REV\REV | 1 | 0 0 0 START INC REV 0
    counters\TYPE\1   | 0 | 5 2 8 s i p 1
    TYPE\1            | 0 | 5 2 8 s i p 1
    /counter\TYPE\1   | 0 | 5 2 8 s i p 1
    counter \TYPE\1   | 0 | 5 2 8 s i p 1
    counter\TYPE \1   | 0 | 5 2 8 s i p 1
    \\\               | 0 | 5 2 8 s i p 1
    _                 | 0 | 5 2 8 s i p 1)";

TEST(CounterStimulusInfo, ReadsFormulas) {
    for (const auto& row : Table(kTable)) {
        Info info = MakeBefore();
        EXPECT_EQ(info.FromFormula(row[0].c_str()), row[1] == "1") << row[0];
        EXPECT_EQ(Show(info), row[2]) << row[0];
    }
    Info info = MakeBefore();
    EXPECT_FALSE(info.FromFormula(nullptr));
    EXPECT_EQ(Show(info), kBefore);
}

// Cut behind any word, the pairs before it are kept.
TEST(CounterStimulusInfo, KeepsWhatStandsBeforeTheFault) {
    const auto words = Split("counter TYPE 3 DIR 1 RADIX 16 START b INC c PERIOD d REV 0", ' ');
    std::string text;
    for (std::size_t good = 0; good < words.size(); ++good) {
        auto fields = Split(kBefore, ' ');
        for (std::size_t field = 0; 2 * field + 2 < good; ++field) {
            fields[field] = words[2 * field + 2];
        }
        Info info = MakeBefore();
        EXPECT_FALSE(info.FromFormula(text.c_str())) << text;
        EXPECT_EQ(Split(Show(info), ' '), fields) << text;
        text += "\\" + words[good];
    }
}

TEST(CounterStimulusInfo, UnsetFieldsGiveNoFormula) {
    EXPECT_EQ(Show(Info()), "0 0 0 - - - 0");
    for (int unset = 0; unset < 7; ++unset) {
        const Info info =
            Make(unset == 0 ? 0 : 1, unset == 1 ? 0 : 2, unset == 2 ? 0 : 10, unset == 3 ? "" : "0",
                 unset == 4 ? nullptr : "1", unset == 5 ? "" : "5", false);
        char text[200] = "old";
        EXPECT_EQ(info.GenerateFormula(text, sizeof text), unset == 6);
        EXPECT_STREQ(text, unset == 6 ? "\\counter\\TYPE\\1\\DIR\\2\\RADIX\\10\\START\\0\\INC\\1"
                                        "\\PERIOD\\5\\REV\\0"
                                      : "old");
    }
    const Info odd = Make(-1, 77, -16, "a\\b", "?", " ", true);
    char text[200];
    EXPECT_TRUE(odd.GenerateFormula(text, sizeof text));
    EXPECT_STREQ(
        text, "\\counter\\TYPE\\-1\\DIR\\77\\RADIX\\-16\\START\\a\\b\\INC\\?\\PERIOD\\ \\REV\\1");
    EXPECT_FALSE(Info().FromFormula(text));
}

TEST(CounterStimulusInfo, BufferSizesToTheByte) {
    const Info info = Make(2, 1, 16, "ff", "1", "10ns", true);
    const std::string whole =
        "\\counter\\TYPE\\2\\DIR\\1\\RADIX\\16\\START\\ff\\INC\\1\\PERIOD\\10ns\\REV\\1";
    const int needed = static_cast<int>(whole.size()) + 1;
    for (int size = -1; size <= needed + 2; ++size) {
        std::string buffer(whole.size() + 10, '#');
        const std::string untouched = buffer;
        EXPECT_EQ(info.GenerateFormula(buffer.data(), size), size >= needed) << size;
        EXPECT_EQ(buffer,
                  size >= needed ? whole + '\0' + untouched.substr(whole.size() + 1) : untouched);
    }
    for (int size = -1; size <= 7; ++size) {
        char buffer[] = "########";
        EXPECT_TRUE(info.GetCountPeriod(buffer, size));
        const std::string cut =
            std::string("10ns").substr(0, static_cast<std::size_t>(std::max(size - 1, 0)));
        std::string expected = size > 0 ? cut + '\0' : "";
        expected += std::string(8 - expected.size(), '#');
        EXPECT_EQ(std::string(buffer, 8), expected) << size;
    }
}

TEST(CounterStimulusInfo, RoundTripsAndCopies) {
    static constexpr const char* kTexts[] = {
        "0",    "ff",    "-1", "1.5ns", "10 ns",
        "TYPE", "16#1#", "x",  "9",     "0000000000000000000000000000000000000001"};
    Random random(7);
    Info kept;
    for (int i = 0; i < 300; ++i) {
        const auto number = [&] { return static_cast<int>(random.Below(2'000)) - 2'000; };
        const Info info = Make(number(), number(), number(), random.Pick(kTexts),
                               random.Pick(kTexts), random.Pick(kTexts), random.OneIn(2));
        char text[300];
        Info back;
        ASSERT_TRUE(info.GenerateFormula(text, sizeof text));
        EXPECT_TRUE(back.FromFormula(text));
        EXPECT_EQ(Show(back), Show(info));
        Info copy(info);
        kept = copy;
        copy = MakeBefore();
        const Info& same = kept;
        kept = same;
        EXPECT_EQ(Show(kept), Show(info));
    }
}

TEST(CounterStimulusInfo, OutOfMemory) {
    const std::string long_text(40, '7');
    const Info full = Make(1, 1, 10, long_text.c_str(), long_text.c_str(), long_text.c_str(), true);
    char formula[300];
    ASSERT_TRUE(full.GenerateFormula(formula, sizeof formula));
    char out[300];
    // What is made with less memory than it wants has no formula; never half of one.
    const auto expect_none = [&](auto make) {
        FailsUnchanged([&] { std::strcpy(out, "old"); },
                       [&] { return make().GenerateFormula(out, sizeof out); }, false,
                       [&] { return std::string(out); });
        EXPECT_STREQ(out, formula);
    };
    expect_none([&] { return Info(full); });
    expect_none([&] {
        Info read;
        read.FromFormula(formula);
        return read;
    });
    std::optional<Info> changed;
    const auto expect_old = [&](auto change) {
        FailsUnchanged([&] { changed.emplace(MakeBefore()); }, [&] { return change(*changed), 0; },
                       0, [&] { return Show(*changed); });
        EXPECT_NE(Show(*changed), kBefore);
    };
    expect_old([&](Info& info) { info = full; });
    expect_old([&](Info& info) { info.SetIncrementBy(long_text.c_str()); });
}

}  // namespace
}  // namespace corv::test
