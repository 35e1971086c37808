// Random operations on waves, of both value sizes, against the naive model.

#include "corv/waves/signal_wave.h"
#include "tests/support/test.h"
#include "tests/waves/naive_wave.h"

namespace corv::test {
namespace {

constexpr std::int64_t kMin = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kMax = std::numeric_limits<std::int64_t>::max();

// A wave, an enumerator that lives as long, and the model of both.
class Pair {
public:
    Pair(std::uint32_t size, std::uint32_t seed) : size_(size), model_(size), random_(seed) {}

    void Change() {
        switch (random_.Below(13)) {
            case 0:
                wave_->Clear();
                return model_.Clear();
            case 1:
                EXPECT_EQ(wave_->ClearPendingEvents(), S_OK);
                return model_.ClearPending();
            case 2:
            case 3:
                EXPECT_EQ(wave_->CommitPendingEvents(), S_OK);
                return model_.Commit();
            case 4:
                return Remove();
            case 5:
            case 6:
                return RemoveSome();
            case 7:
                return AddPending(random_.OneIn(9) ? 4000 : random_.Below(20));
            case 8:
                return Add(random_.OneIn(3) ? 9000 : random_.Below(300));
            default:
                return Add(random_.Below(12));
        }
    }

    void ExpectSame() {
        const auto& expected = model_.Events();
        ASSERT_EQ(wave_->GetEventCount(), expected.size());
        ASSERT_EQ(wave_->GetFirstTime(), expected.empty() ? -1 : expected.front().time);
        ASSERT_EQ(wave_->GetLastTime(), expected.empty() ? -1 : expected.back().time);
        Misuse();
        ASSERT_NO_FATAL_FAILURE(ExpectSameWalk());
        for (int i = 0; i < 5; ++i) {
            ASSERT_NO_FATAL_FAILURE(ExpectSameSearch(SomeTime()));
        }
    }

private:
    // A value argument, now and then one that is too short, too long, or none.
    struct Value {
        std::uint64_t bytes[2];
        const void* pointer;
        std::uint32_t size;
    };
    void TakeValue(Value& value) {
        value.bytes[0] = random_.Bits();
        value.pointer = random_.OneIn(8) ? nullptr : &value.bytes;
        value.size = random_.OneIn(4) ? static_cast<std::uint32_t>(random_.Below(17)) : size_;
    }

    std::int64_t SomeTime() {
        constexpr std::int64_t kEnds[] = {kMin, kMin + 1, -2, -1, 0, kMax - 1, kMax};
        const auto& events = model_.Events();
        if (events.empty() || random_.OneIn(8)) {
            return kEnds[random_.Below(std::size(kEnds))];
        }
        const std::int64_t near = events[random_.Below(events.size())].time;
        return near +
               (near > kMin && near < kMax ? static_cast<std::int64_t>(random_.Below(3)) - 1 : 0);
    }

    void Add(std::size_t count) {
        const bool from_start = model_.Events().empty() && model_.PendingCount() == 0;
        std::int64_t time = !model_.Events().empty() ? model_.Events().back().time
                            : from_start             ? (random_.OneIn(9) ? kMin : 1000)
                                                     : first_pending_time_;
        for (; count > 0; --count) {
            const auto step = static_cast<std::int64_t>(random_.OneIn(4) ? 0 : random_.Below(9));
            time = random_.OneIn(20'000) ? kMax : time > kMax - step ? kMax : time + step;
            const auto stamp = static_cast<std::uint32_t>(random_.Below(4));
            const bool marked = random_.OneIn(3);
            Value value;
            TakeValue(value);
            const HRESULT result =
                marked ? wave_->AddMarkedEvent(time, stamp, value.pointer, value.size)
                       : wave_->AddEvent(time, stamp, value.pointer, value.size);
            EXPECT_EQ(result, S_OK);
            EXPECT_EQ(wave_->InsertEvent(time, value.pointer, value.size), E_NOTIMPL);
            model_.Add(time, stamp, value.pointer, value.size, marked);
        }
    }

    // In front of everything, so that the order of the list stays true; equal times too.
    void AddPending(std::size_t count) {
        if (model_.PendingCount() == 0) {
            pending_time_ = model_.Events().empty() ? 0 : model_.Events().front().time;
            first_pending_time_ = pending_time_;
        }
        for (; count > 0; --count) {
            const auto step = static_cast<std::int64_t>(random_.Below(3));
            pending_time_ = pending_time_ < kMin + step ? kMin : pending_time_ - step;
            Value value;
            TakeValue(value);
            EXPECT_EQ(wave_->AddPendingEvent(pending_time_, value.pointer, value.size), S_OK);
            model_.AddPending(pending_time_, value.pointer, value.size);
        }
    }

    void Remove() {
        const std::int64_t time = SomeTime();
        EXPECT_EQ(wave_->RemoveEvent(time), model_.Remove(time) ? S_OK : E_FAIL) << time;
    }
    void RemoveSome() {
        const std::int64_t from = random_.OneIn(5) ? -1 : SomeTime();
        const std::int64_t to = random_.OneIn(5) ? -1 : SomeTime();
        EXPECT_EQ(wave_->RemoveEvents(from, to), model_.Remove(from, to) ? S_OK : E_FAIL)
            << from << " to " << to;
    }

    // The enumerator is not placed again yet: any answer will do that touches no foreign memory.
    void Misuse() {
        IWaveEvent* event = nullptr;
        if (events_->Current(&event) == S_OK) {
            EXPECT_EQ(event->GetTime(), events_->CurrentTime());
        }
        events_->Next(1, &event, nullptr);
        EXPECT_EQ(events_->HasEvents(), model_.Events().empty() ? 0 : 1);
    }

    void ExpectSameEvent(IWaveEvent* event, const NaiveWave::Event& expected) {
        std::uint64_t bytes = 0;
        ASSERT_EQ(event->GetTime(), expected.time);
        ASSERT_EQ(event->GetFlags(), expected.flags);
        ASSERT_EQ(event->GetValueSize(), size_);
        ASSERT_EQ(event->GetValue(&bytes, size_ - 1), 0U);
        ASSERT_EQ(event->GetValue(nullptr, size_), 0U);
        ASSERT_EQ(event->GetValue(&bytes, size_ + 1), size_);
        ASSERT_EQ(bytes, expected.value);
        ASSERT_EQ(std::memcmp(event->GetValueData(), &bytes, size_), 0);
    }

    void ExpectPosition(std::size_t index) {
        const std::size_t count = model_.Events().size();
        IWaveEvent* const none = nullptr;
        IWaveEvent* event = none;
        ASSERT_EQ(events_->IsNotFirst(), index != 0);
        ASSERT_EQ(events_->IsNotLast(), index + 1 != count);
        ASSERT_EQ(events_->CurrentTime(), index < count ? model_.Events()[index].time : -1);
        ASSERT_EQ(events_->Current(&event), index < count ? S_OK : E_FAIL);
        ASSERT_EQ(event != none, index < count);
    }

    void ExpectSameWalk() {
        const auto& expected = model_.Events();
        ASSERT_EQ(events_->Reset(), S_OK);
        ASSERT_EQ(events_->Next(0, nullptr, nullptr), S_FALSE);
        for (std::size_t at = 0;;) {
            ASSERT_NO_FATAL_FAILURE(ExpectPosition(at));
            IWaveEvent* some[70] = {};
            const std::size_t asked = random_.OneIn(4) ? 1 : random_.Below(70);
            const std::size_t due = std::min(asked, expected.size() - at);
            std::uint32_t delivered = 99;
            ASSERT_EQ(events_->Next(static_cast<std::uint32_t>(asked), some, &delivered),
                      due > 0 ? S_OK : S_FALSE);
            ASSERT_EQ(delivered, due);
            for (std::size_t i = 0; i < due; ++i, ++at) {
                ASSERT_NO_FATAL_FAILURE(ExpectSameEvent(some[i], expected[at]));
                std::uint64_t bytes = 0;
                const auto index = static_cast<std::uint32_t>(at);
                ASSERT_EQ(wave_->GetEventValue(index, &bytes, size_), S_OK);
                ASSERT_EQ(bytes, expected[at].value);
            }
            if (at == expected.size() && asked > 0) {
                break;
            }
        }
        std::uint64_t bytes = 0;
        ASSERT_NO_FATAL_FAILURE(ExpectPosition(expected.size()));
        ASSERT_EQ(wave_->GetEventValue(wave_->GetEventCount(), &bytes, size_), E_INVALIDARG);
        if (!expected.empty()) {
            ASSERT_EQ(wave_->GetEventValue(0, &bytes, size_ - 1), E_INVALIDARG);
            ASSERT_EQ(wave_->GetEventValue(0, nullptr, size_), E_FAIL);
        }
    }

    void ExpectSameSearch(std::int64_t time) {
        const std::int64_t before = events_->CurrentTime();
        for (std::uint32_t mode = 0; mode < 7; ++mode) {
            SCOPED_TRACE(testing::Message() << "at " << time << " mode " << mode);
            const auto expected = model_.Find(time, mode);
            IWaveEvent* event = nullptr;
            ASSERT_EQ(wave_->FindEvent(time, mode, &event), expected ? S_OK : E_FAIL);
            ASSERT_EQ(event != nullptr, expected.has_value());
            ASSERT_EQ(events_->Seek(time, mode), expected ? S_OK : E_FAIL);
            if (!expected) {
                ASSERT_EQ(mode == 0 ? events_->CurrentTime() : before, before);
                continue;
            }
            ASSERT_NO_FATAL_FAILURE(ExpectSameEvent(event, model_.Events()[*expected]));
            ASSERT_NO_FATAL_FAILURE(ExpectPosition(*expected));
            IWaveEvent* current = nullptr;
            ASSERT_EQ(events_->Current(&current), S_OK);
            ASSERT_EQ(current, event);
        }
    }

    std::uint32_t size_;
    WavePtr wave_ = NewWave(size_);
    EnumeratorPtr events_ = NewEnumerator(*wave_);
    NaiveWave model_;
    std::int64_t pending_time_ = 0;
    std::int64_t first_pending_time_ = 0;  // no event may be added before it
    Random random_;
};

TEST(SignalWaveModel, RandomOperations) {
    for (const std::uint32_t size : {4U, 8U}) {
        for (std::uint32_t seed = 1; seed <= 25; ++seed) {
            SCOPED_TRACE(testing::Message() << "value size " << size << " seed " << seed);
            Pair pair(size, seed);
            for (int change = 0; change < 24; ++change) {
                pair.Change();
                ASSERT_NO_FATAL_FAILURE(pair.ExpectSame()) << "change " << change;
            }
        }
    }
}

}  // namespace
}  // namespace corv::test
