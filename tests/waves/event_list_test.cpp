// The list of events alone, on ranges that run out of addresses and of memory.

#include "waves/event_list.h"

#include "tests/support/test.h"
#include "waves/wave_event.h"

namespace corv::test {
namespace {

// A small range of the heap that can fail, and that fills what is trimmed with rubbish.
class SmallRange {
public:
    static constexpr std::size_t kWorthwhile = 1024;
    static inline Random* failing = nullptr;

    static SmallRange Reserve(std::size_t, std::size_t bytes) {
        SmallRange range;
        if (failing == nullptr || !failing->OneIn(3)) {
            range.reserved_ = std::min<std::size_t>(bytes, 16384);
            range.data_ = std::malloc(range.reserved_);
        }
        return range;
    }
    static void Keep(SmallRange) {}

    SmallRange() = default;
    SmallRange(SmallRange&& other) noexcept { *this = std::move(other); }
    SmallRange& operator=(SmallRange&& other) noexcept {
        std::swap(data_, other.data_);
        std::swap(reserved_, other.reserved_);
        std::swap(usable_, other.usable_);
        return *this;
    }
    ~SmallRange() { std::free(data_); }

    explicit operator bool() const { return data_ != nullptr; }
    void* data() const { return data_; }
    std::size_t reserved() const { return reserved_; }
    std::size_t usable() const { return usable_; }
    bool Commit(std::size_t bytes) {
        if (bytes > reserved_ || (failing != nullptr && failing->OneIn(4))) {
            return false;
        }
        usable_ = std::max(usable_, bytes);
        return true;
    }
    void Trim(std::size_t used) const {
        std::memset(static_cast<char*>(data_) + used, 0xA5, usable_ - used);
    }

private:
    void* data_ = nullptr;
    std::size_t reserved_ = 0;
    std::size_t usable_ = 0;
};

using Event = waves::WaveEvent<std::uint64_t>;
using List = waves::EventList<Event, SmallRange>;
using Times = std::vector<std::int64_t>;

bool Append(List& list, std::int64_t time) {
    if (list.full() && !list.MakeRoom()) {
        return false;
    }
    list.Append(time, std::uint64_t{7}, std::uint8_t{0});
    return true;
}

// Adds events at the times; the times of those that could be added.
Times AppendAll(List& list, Random& random, std::int64_t& time) {
    Times added;
    for (std::size_t left = random.OneIn(5) ? random.Below(900) : random.Below(9); left > 0;
         --left) {
        const FailingAlloc failing(random.OneIn(9) ? 1 : 0);
        if (Append(list, ++time)) {
            DisarmFailingAlloc();
            added.push_back(time);
        }
    }
    return added;
}

void ExpectTimes(const List& list, const Times& times) {
    ASSERT_EQ(list.size(), times.size());
    ASSERT_LE(list.size(), list.capacity());
    for (std::size_t i = 0; i < times.size(); ++i) {
        ASSERT_EQ(list.begin()[i].Time(), times[i]) << i;
    }
}

TEST(EventList, RandomOperationsWithFailures) {
    for (std::uint32_t seed = 1; seed <= 200; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        Random random(seed);
        SmallRange::failing = seed % 2 == 0 ? &random : nullptr;
        List list;
        Times times;
        std::int64_t time = 0;
        for (int step = 0; step < 60; ++step) {
            const auto at = static_cast<std::ptrdiff_t>(random.Below(times.size() + 1));
            const auto to = at + static_cast<std::ptrdiff_t>(
                                     random.Below(times.size() - static_cast<std::size_t>(at) + 1));
            switch (random.Below(8)) {
                case 0: {
                    List reversed;
                    const Times added = AppendAll(reversed, random, time);
                    const FailingAlloc failing(random.OneIn(3) ? 1 : 0);
                    const bool done = list.Prepend(reversed);
                    DisarmFailingAlloc();
                    if (done) {
                        times.insert(times.begin(), added.rbegin(), added.rend());
                    }
                    break;
                }
                case 1:
                    list.Erase(list.begin() + at, list.begin() + to);
                    times.erase(times.begin() + at, times.begin() + to);
                    break;
                case 2:
                    if (random.OneIn(4)) {
                        list.Clear();
                        times.clear();
                    }
                    break;
                case 3: {
                    const FailingAlloc failing(random.OneIn(3) ? 1 : 0);
                    list.Trim();
                    break;
                }
                default: {
                    const Times added = AppendAll(list, random, time);
                    times.insert(times.end(), added.begin(), added.end());
                }
            }
            ASSERT_NO_FATAL_FAILURE(ExpectTimes(list, times)) << "step " << step;
        }
        list.Retire();
    }
    SmallRange::failing = nullptr;
}

// Adding and asking in turn copies each event some sixteen times at most, however long the list;
// what is removed is given back.
TEST(EventList, AddingAndAskingInTurnMovesRarely) {
    waves::EventList<Event> list;
    std::size_t moved = 0;
    for (std::int64_t time = 0; time < 4000; ++time) {
        const Event* const before = list.begin();
        ASSERT_TRUE(!list.full() || list.MakeRoom());
        list.Append(time, std::uint64_t{7}, std::uint8_t{0});
        list.Trim();
        moved += list.begin() != before ? list.size() : 0;
        ASSERT_LE(list.capacity(), list.size() + list.size() / 12 + 5);
    }
    EXPECT_LT(moved, 4000U * 20);
    list.Erase(list.begin() + 100, list.end());
    list.Trim();
    EXPECT_LE(list.capacity(), 112U);
    list.Clear();
    list.Trim();
    EXPECT_EQ(list.capacity(), 0U);
}

}  // namespace
}  // namespace corv::test
