#include "waves/find_together.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <limits>
#include <vector>

#include "tests/support/random_formula.h"
#include "waves/wave_event.h"

namespace corv::test {
namespace {

TEST(FindTogether, FindsWhatEachSearchAloneFinds) {
    using List = waves::Timeline<CWaveEvent32>;
    constexpr std::int64_t kMax = std::numeric_limits<std::int64_t>::max();
    Random random(3);
    for (std::size_t count = 0; count <= waves::kMostTogether; ++count) {
        std::vector<List> lists(count);
        std::vector<List*> pointers;
        for (List& list : lists) {
            const std::size_t size = random.OneIn(4) ? 40'000 : random.Below(100);
            for (std::int64_t time = 0; list.size() < size; time += random.Below(3) == 0 ? 1 : 0) {
                if (list.full()) {
                    ASSERT_TRUE(list.MakeRoom());
                }
                list.Append(time, 0U, std::uint8_t{0});
            }
            pointers.push_back(&list);
        }
        for (const std::int64_t time : {-kMax - 1, std::int64_t{-1}, std::int64_t{0},
                                        std::int64_t{17}, std::int64_t{5000}, kMax}) {
            for (std::uint32_t mode = 0; mode < 6; ++mode) {
                std::array<std::size_t, waves::kMostTogether> found;
                waves::FindTogether(pointers.data(), count, time, mode, found.data());
                for (std::size_t i = 0; i < count; ++i) {
                    EXPECT_EQ(found[i], lists[i].Find(time, mode)) << time << ' ' << mode;
                }
            }
        }
    }
}

}  // namespace
}  // namespace corv::test
