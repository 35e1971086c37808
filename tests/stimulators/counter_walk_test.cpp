// The numbers and the texts of counters against each other, and counters over a long time.

#include "corv/stimulators/counter.h"
#include "corv/stimulus/formula_parser.h"
#include "corv/stimulus/stimulus.h"
#include "tests/stimulators/counter_formula.h"
#include "tests/support/test.h"

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace corv::test {
namespace {

constexpr std::int64_t kLastTime = 9'200'000'000'000'000'000;

// One counter asked twice: by the stimuli of its wires, and by its periods written as formulas, cut
// and replayed by ordinary stimuli.
class BothWays {
public:
    BothWays(const CounterSetup& setup, std::int64_t begin, int split_mode, Random& random)
        : setup_(setup), begin_(begin), split_mode_(split_mode), wires_(setup.width) {
        static constexpr unsigned kRadixes[] = {2, 8, 10, 16};
        const std::string formula =
            CounterFormula(setup, std::to_string(kPeriod), kRadixes[random.Below(4)]);
        EXPECT_TRUE(text_form_.Init(formula.c_str(), setup.width, split_mode));
        CStringArray references;
        EXPECT_EQ(CFormulaParser().Run(formula.c_str(), references, Width(), split_mode), 1);
        EXPECT_EQ(references.GetSize(), Width());
        for (int wire = 0; wire < Width(); ++wire) {
            EXPECT_EQ(wires_[static_cast<std::size_t>(wire)].Create(references[wire], begin), 1);
        }
    }

    void CheckPeriod(std::size_t first_asked) {
        CString text;
        CStringArray formulas;
        text_form_.NoteStartTime(begin_);
        ASSERT_TRUE(text_form_.BuildSegment(text));
        ASSERT_EQ(CFormulaParser().Run(text, formulas, Width(), split_mode_), 1);
        ASSERT_EQ(formulas.GetSize(), Width());
        ASSERT_EQ(wires_[first_asked].GetNextEventTime(begin_), begin_ + kPeriod);
        for (int wire = 0; wire < Width(); ++wire) {
            CStimulus replayed;
            ASSERT_EQ(replayed.Create(formulas[wire], begin_), 1);
            const std::string answers = Ask(wires_[static_cast<std::size_t>(wire)]);
            ASSERT_EQ(answers, Ask(replayed)) << "wire " << wire << ' ' << text;
            ASSERT_EQ(answers.substr(0, 16), "- 0;" + answers.substr(4, 1) + " 7;" +
                                                 answers.substr(4, 1) + " 7;" +
                                                 answers.substr(4, 1) + " 7;")
                << wire;
        }
        begin_ += kPeriod;
    }

private:
    static constexpr std::int64_t kPeriod = 7;

    // The values before the period, at its begin, within it, at its last moment and at its end,
    // with the next events after these times but the last, where the next period is asked for.
    std::string Ask(const CStimulus& stimulus) const {
        std::ostringstream answers;
        for (const std::int64_t time :
             {std::int64_t{-1}, std::int64_t{0}, std::int64_t{1}, kPeriod - 1, kPeriod}) {
            CString value("-");
            stimulus.GetValue(begin_ + time, value);
            answers << value;
            if (time < kPeriod) {
                answers << ' ' << stimulus.GetNextEventTime(begin_ + time) - begin_ << ';';
            }
        }
        return answers.str();
    }

    int Width() const { return static_cast<int>(setup_.width); }

    CounterSetup setup_;
    std::int64_t begin_;
    int split_mode_;
    CCounterState text_form_;
    std::vector<CStimulus> wires_;
};

TEST(CounterWalk, NumbersAndTextsAgree) {
    std::uint32_t seed = 0;
    for (unsigned width = 1; width <= 130; width += width < 65 ? 1 : 65) {
        for (int kind = 0; kind < 20; ++kind) {
            Random random(++seed);
            ResetCounters();
            const auto number = [&] {
                return random.OneIn(3) ? random.Bits() : random.Bits() >> random.Below(64);
            };
            const CounterSetup setup{1 + kind % 5,
                                     1 + kind / 5 % 2,
                                     width,
                                     kind >= 10,
                                     random.OneIn(4) ? 0 : number(),
                                     random.OneIn(2) ? 1 : number()};
            SCOPED_TRACE(testing::Message()
                         << "seed " << seed << ' ' << CounterFormula(setup, "7"));
            const auto begin = static_cast<std::int64_t>(random.Bits() >> (1 + random.Below(63)));
            BothWays ways(setup, std::min(begin, kLastTime - 100), random.OneIn(2) ? 1 : 0, random);
            for (int period = 0; period < (width < 9 ? 12 : 3); ++period) {
                ASSERT_NO_FATAL_FAILURE(ways.CheckPeriod(random.Below(width)));
            }
        }
    }
    ResetCounters();
}

// Bytes of the heap in use, 0 where the platform does not tell.
std::size_t HeapInUse() {
#ifdef __GLIBC__
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
#else
    return 0;
#endif
}

TEST(CounterWalk, AMillionPeriodsKeepMemoryFlat) {
    constexpr std::int64_t kPeriods = 1'000'000;
    ResetCounters();
    ASSERT_EQ(RegisterCounter(CounterFormula({2}, "10").c_str(), 4, 1), 0);
    CStimulus wire;
    CStimulus whole;
    ASSERT_EQ(wire.Create(CounterReference(3, 0).c_str(), 0), 1);
    ASSERT_EQ(whole.Create(CounterFormula({}, "10").c_str(), 0), 1);
    std::size_t in_use = 0;
    CString value;
    for (std::int64_t period = 0; period < kPeriods; ++period) {
        if (period == 100) {
            in_use = HeapInUse();
        }
        const std::int64_t time = 10 * period;
        ASSERT_EQ(wire.GetNextEventTime(time), time + 10);
        ASSERT_EQ(wire.GetValue(time, value), 1);
        ASSERT_EQ(value[0], period % 4 == 1 || period % 4 == 2 ? '1' : '0');
        ASSERT_EQ(whole.GetNextEventTime(time), time + 10);
    }
    EXPECT_LE(HeapInUse(), in_use + 1000);
    ASSERT_EQ(whole.GetValue(10 * kPeriods, value), 1);
    EXPECT_STREQ(value, "10#1000000");
    ResetCounters();
}

}  // namespace
}  // namespace corv::test
