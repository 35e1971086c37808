#include "host/axis.h"

#include "corv/util/time_text.h"
#include "tests/support/test.h"

namespace corv::host {
namespace {

constexpr std::int64_t kLast = std::numeric_limits<std::int64_t>::max();

TEST(TimeGrid, DividesAsTheFormulaSays) {
    for (std::int64_t columns = 1; columns <= 40; ++columns) {
        for (std::int64_t span = 1; span <= 60; ++span) {
            const TimeGrid grid({5, 5 + span}, columns);
            for (std::int64_t t = 0; t < span; ++t) {
                ASSERT_EQ(grid.Column(5 + t), t * columns / span);
            }
            for (std::int64_t c = 0; c <= columns; ++c) {
                std::int64_t first = 0;
                while (first < span && first * columns / span < c) {
                    ++first;
                }
                ASSERT_EQ(grid.First(c), 5 + first);
            }
            EXPECT_EQ(grid.Column(4), 0);
            EXPECT_EQ(grid.Column(5 + span), columns);
        }
    }
}

TEST(TimeGrid, HoldsTheWholeRangeOfTimes) {
    for (const std::int64_t columns : {1, 7, 1000, 999983}) {
        const TimeGrid grid({0, kLast}, columns);
        EXPECT_EQ(grid.First(columns), kLast);
        for (std::int64_t time = 1; time > 0 && time < kLast / 2; time = time * 3 + 1) {
            const std::int64_t column = grid.Column(time);
            EXPECT_LE(grid.First(column), time);
            EXPECT_GT(grid.First(column + 1), time);
        }
    }
}

TEST(Axis, StepsAreRound) {
    for (const RoundStep& step : RoundSteps()) {
        const std::string text = FormatTime(step.length, step.unit);
        EXPECT_EQ(text, FormatTime(step.length));
        const std::string digits = text.substr(0, text.find_first_not_of("0123456789"));
        const bool clock = step.unit >= TimeUnit::Second && digits == "30";
        EXPECT_TRUE(clock || digits.find_first_not_of('0', 1) == std::string::npos) << text;
        EXPECT_TRUE(clock || std::string("125").find(digits[0]) != std::string::npos) << text;
    }
}

// Whether labels for a step would stand apart, counted tick by tick.
bool Fits(const TimeGrid& grid, const std::vector<Tick>& ticks, std::int64_t scale) {
    for (std::size_t i = 0; i + 1 < ticks.size(); ++i) {
        const auto width = static_cast<std::int64_t>(ticks[i].label.size()) * scale;
        if (grid.Column(ticks[i].time) + width >= grid.Column(ticks[i + 1].time)) {
            return false;
        }
    }
    return true;
}

TEST(Axis, LabelsAreInTheUnitThatMakesThemShort) {
    const auto labels = [](std::int64_t start, std::int64_t end) {
        std::string text;
        for (const Tick& tick : MakeTicks(TimeGrid({start, end}, 40), 1, std::nullopt)) {
            text += tick.label + " ";
        }
        return text;
    };
    EXPECT_EQ(labels(999'000'000, 999'800'000), "999us 999.2us 999.4us 999.6us ");
    EXPECT_EQ(labels(0, 50'000), "0 10ns 20ns 30ns 40ns ");
    EXPECT_EQ(labels(1'000'123, 1'000'127), "1000124ps 1000126ps ");
}

TEST(Axis, LabelsStandApartAndAreDense) {
    test::Random random(11);
    int two_or_more = 0;
    for (int i = 0; i < 5000; ++i) {
        const auto start = static_cast<std::int64_t>(random.Bits() >> (1 + random.Below(62)));
        const auto span = 1 + static_cast<std::int64_t>(random.Bits() >> (2 + random.Below(61)));
        if (start > kLast - span) {
            continue;
        }
        const std::int64_t scale = random.OneIn(2) ? 1 : 7;
        const TimeGrid grid({start, start + span},
                            scale * (30 + static_cast<std::int64_t>(random.Below(120))));
        const std::vector<Tick> ticks = MakeTicks(grid, scale, std::nullopt);
        SCOPED_TRACE(FormatTime(start) + " + " + FormatTime(span));
        EXPECT_TRUE(Fits(grid, ticks, scale));
        two_or_more += ticks.size() > 1;
        for (std::size_t k = 0; k < ticks.size(); ++k) {
            EXPECT_GE(ticks[k].time, start);
            EXPECT_LT(ticks[k].time, start + span);
            EXPECT_EQ(ParseTime(ticks[k].label), ticks[k].time);
        }
        if (ticks.size() < 2) {
            continue;
        }
        // Evenly apart by a round step; five times as many would not fit.
        const std::int64_t step = ticks[1].time - ticks[0].time;
        EXPECT_TRUE(std::any_of(RoundSteps().begin(), RoundSteps().end(),
                                [step](const RoundStep& round) { return round.length == step; }));
        EXPECT_EQ(ticks[0].time % step, 0);
        EXPECT_LT(ticks[0].time - start, step);
        EXPECT_EQ(ticks.size(),
                  1 + static_cast<std::size_t>((start + span - 1 - ticks[0].time) / step));
        const auto width = static_cast<std::int64_t>(ticks.back().label.size() + 9) * scale;
        EXPECT_TRUE(step == 1 ||
                    grid.Column(ticks[0].time + step / 5) - grid.Column(ticks[0].time) < width);
    }
    EXPECT_GT(two_or_more, 4000);
}

}  // namespace
}  // namespace corv::host
