#include "waves/timeline.h"

#include "tests/support/test.h"
#include "waves/wave_event.h"

namespace corv::test {
namespace {

using Event = waves::WaveEvent<std::uint32_t>;
using Times = std::vector<std::int64_t>;

constexpr std::int64_t kMin = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kMax = std::numeric_limits<std::int64_t>::max();

// A timeline and its times; new events follow in steps of 0 to 2.
struct Pair {
    template <class List>
    static void Add(List& list, std::int64_t time) {
        ASSERT_TRUE(!list.full() || list.MakeRoom());
        list.Append(time, std::uint32_t{0}, std::uint8_t{0});
    }
    void Append(std::size_t count, Random& random) {
        for (; count > 0; --count) {
            times.push_back((times.empty() ? 0 : times.back()) +
                            static_cast<std::int64_t>(random.Below(3)));
            Add(timeline, times.back());
        }
    }
    void Prepend(std::size_t count, Random& random) {
        waves::EventList<Event> reversed;
        for (; count > 0; --count) {
            times.insert(times.begin(), times.front() - static_cast<std::int64_t>(random.Below(3)));
            Add(reversed, times.front());
        }
        ASSERT_TRUE(timeline.Prepend(reversed));
    }
    void Erase(std::size_t first, std::size_t last) {
        timeline.Erase(first, last);
        times.erase(times.begin() + static_cast<std::ptrdiff_t>(first),
                    times.begin() + static_cast<std::ptrdiff_t>(last));
    }

    void ExpectCounts(std::int64_t time, bool without_memory = false) {
        const auto before = std::lower_bound(times.begin(), times.end(), time) - times.begin();
        const auto up_to = std::upper_bound(times.begin(), times.end(), time) - times.begin();
        ArmFailingAlloc(without_memory ? 1 : 0, true);
        const std::size_t counted_before = timeline.CountBefore(time);
        const std::size_t counted_up_to = timeline.CountUpTo(time);
        DisarmFailingAlloc();
        ASSERT_EQ(counted_before, before) << times.size() << " events, " << time;
        ASSERT_EQ(counted_up_to, up_to) << times.size() << " events, " << time;
    }
    void ExpectSomeCounts(Random& random) {
        for (const std::int64_t time : {kMin, times.front() - 1, times.back() + 1, kMax}) {
            ASSERT_NO_FATAL_FAILURE(ExpectCounts(time));
        }
        for (int i = 0; i < 200; ++i) {
            ASSERT_NO_FATAL_FAILURE(ExpectCounts(times[random.Below(times.size())]));
        }
    }

    waves::Timeline<Event> timeline;
    Times times;
};

TEST(Timeline, AllTimesOfAllSmallSizes) {
    for (std::size_t count = 1; count < 130; ++count) {
        Random random(static_cast<std::uint32_t>(count));
        Pair pair;
        pair.Append(count, random);
        for (std::int64_t time = -1; time <= pair.times.back() + 1; ++time) {
            ASSERT_NO_FATAL_FAILURE(pair.ExpectCounts(time));
        }
        ASSERT_NO_FATAL_FAILURE(pair.ExpectSomeCounts(random));
    }
}

// Long enough for an index of two levels, with changes at random places between the questions, and
// memory for the index not always there.
TEST(Timeline, IndexFollowsEveryChange) {
    constexpr std::size_t kLong = waves::TimeIndex::kWorthwhile;
    for (std::uint32_t seed = 1; seed <= 20; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        Random random(seed);
        Pair pair;
        pair.Append(kLong - 20 + random.Below(40), random);
        for (int change = 0; change < 30; ++change) {
            const std::int64_t time = pair.times[random.Below(pair.times.size())];
            ASSERT_NO_FATAL_FAILURE(pair.ExpectCounts(time, random.OneIn(3)));
            const std::size_t at = random.Below(pair.times.size());
            const std::size_t left = pair.times.size() - at;
            switch (random.Below(6)) {
                case 0:
                    ASSERT_NO_FATAL_FAILURE(pair.Prepend(random.Below(70), random));
                    break;
                case 1:
                    pair.Erase(at, at + 1);
                    break;
                case 2:
                    pair.Erase(at, at + random.Below(std::min(left, kLong / 11)));
                    break;
                case 3:
                    pair.Append(random.Below(kLong / 4), random);
                    break;
                default:
                    pair.Append(random.Below(70), random);
            }
            ASSERT_NO_FATAL_FAILURE(pair.ExpectSomeCounts(random)) << "change " << change;
        }
        pair.timeline.Clear();
        pair.times.clear();
        pair.Append(kLong + 1, random);
        ASSERT_NO_FATAL_FAILURE(pair.ExpectSomeCounts(random));
    }
}

}  // namespace
}  // namespace corv::test
