#include "corv/waves/signal_wave.h"

#include "tests/support/test.h"
#include "tests/waves/naive_wave.h"

namespace corv::test {
namespace {

HRESULT Add(ISignalWave& wave, std::int64_t time, std::uint32_t stamp, char value) {
    const std::string bytes(4, value);
    return wave.AddEvent(time, stamp, bytes.data(), 4);
}

TEST(SignalWave, TypesAndTheirValueSizes) {
    for (std::uint32_t type = 0; type < 70; ++type) {
        WavePtr wave;
        const bool known = type == 1 || type == 2 || type == 4 || type == 8;
        ASSERT_EQ(CreateSignalWave(type, wave.Out()), known ? S_OK : E_OUTOFMEMORY) << type;
        ASSERT_EQ(wave ? wave->GetValueSize() : 0, !known ? 0U : type == 8 ? 8U : 4U);
    }
}

// An event that was handed out stays where it is until the next change, whatever is asked first.
TEST(SignalWave, QuestionsMoveNoEvent) {
    for (std::int64_t count = 1; count < 9000; count += count / 3 + 1) {
        for (int first = 0; first < 3; ++first) {
            const WavePtr wave = NewWave();
            const EnumeratorPtr events = NewEnumerator(*wave);
            for (std::int64_t time = 0; time < count; ++time) {
                Add(*wave, time, 0, 'A');
            }
            IWaveEvent* asked[3] = {};
            for (int i = first; i < first + 3; ++i) {
                IWaveEvent** const event = &asked[i - first];
                ASSERT_EQ(i % 3 == 0   ? wave->FindEvent(0, FindAt, event)
                          : i % 3 == 1 ? events->Current(event)
                                       : events->Next(1, event, nullptr),
                          S_OK);
                events->Reset();
            }
            ASSERT_TRUE(asked[0] == asked[1] && asked[1] == asked[2]) << count << ' ' << first;
        }
    }
}

// Not in order of time: searches then find what they find, and touch nothing else.
TEST(SignalWave, DisorderIsHarmless) {
    const WavePtr wave = NewWave(8);
    for (std::int64_t i = 0; i < 3000; ++i) {
        wave->AddEvent(i * 7919 % 1000, 0, nullptr, 0);
    }
    IWaveEvent* event = nullptr;
    for (std::int64_t time = 0; time < 1000; ++time) {
        for (std::uint32_t mode = 0; mode < 5; ++mode) {
            wave->FindEvent(time, mode, &event);
        }
        wave->RemoveEvents(time, 999 - time);
        wave->RemoveEvent(time);
    }
}

TEST(SignalWave, ChangedInPlace) {
    const WavePtr wave = NewWave(8);
    wave->AddEvent(10, 0, nullptr, 8);
    IWaveEvent* event = nullptr;
    ASSERT_EQ(wave->FindEvent(10, FindAt, &event), S_OK);
    const char bytes[] = "12345678";
    for (const int size : {std::numeric_limits<int>::min(), -8, -1, 0, 4, 7, 9}) {
        EXPECT_FALSE(event->SetValue(bytes, size));
    }
    EXPECT_FALSE(event->SetValue(nullptr, 8));
    EXPECT_TRUE(event->SetValue(bytes, 8));
    EXPECT_EQ(event->SetFlags(0xfe), 0xfe);
    EXPECT_EQ(event->GetFlags(), 0xfe);
    char out[9] = "";
    EXPECT_EQ(wave->GetEventValue(0, out, 8), S_OK);
    EXPECT_STREQ(out, bytes);
}

// ---- running out of memory ----

// Fills a wave and asks now and then, every request for memory failing once: each failure is told,
// leaves the events as they were, and the operation works when it is tried again.
TEST(SignalWave, EveryAllocationFailsOnce) {
    WavePtr wave;
    FailsUnchanged([&] { wave = {}; }, [&] { return CreateSignalWave(8, wave.Out()); },
                   E_OUTOFMEMORY, [&] { return !wave; });
    int failures = 0;
    const auto expect = [&](const auto& operation) {
        const std::uint32_t count = wave->GetEventCount();
        failures += FailEveryAllocation(operation, [&](HRESULT result) {
            EXPECT_EQ(result, E_OUTOFMEMORY);
            EXPECT_EQ(wave->GetEventCount(), count);
        });
    };
    for (std::int64_t time = 0; time < 300; ++time) {
        expect([&] { return wave->AddEvent(2 * time, 7, nullptr, 0); });
        expect([&] { return wave->AddMarkedEvent(2 * time + 1, 7, nullptr, 0); });
        expect([&] { return wave->AddPendingEvent(-1 - time, nullptr, 0); });
        IWaveEvent* event = nullptr;
        if (time % 50 == 0 && time < 250) {
            // giving room back needs memory; without it the room stays, and the answer is given
            const FailingAlloc failing(1, true);
            EXPECT_EQ(wave->FindEvent(time, FindAtOrAfter, &event), S_OK);
        }
    }
    EXPECT_GT(failures, 8);
    EnumeratorPtr events;
    expect([&] { return wave->CreateEnumerator(events.Out()); });
    EXPECT_EQ(events->IsNotFirst(), 0);

    IWaveEvent* last = nullptr;
    EXPECT_EQ(wave->FindEvent(599, FindAt, &last), S_OK);  // leaves no room for as many more
    failures = 0;
    expect([&] { return wave->CommitPendingEvents(); });
    EXPECT_EQ(failures, 1);
    EXPECT_EQ(wave->GetEventCount(), 900U);
    EXPECT_EQ(wave->CommitPendingEvents(), S_OK);
    EXPECT_EQ(wave->GetEventCount(), 900U);
    for (std::int64_t time = -300; time < 600; ++time) {
        ASSERT_EQ(events->CurrentTime(), time);
        IWaveEvent* event = nullptr;
        ASSERT_EQ(events->Next(1, &event, nullptr), S_OK);
        ASSERT_EQ(event->GetFlags(), time >= 0 && time % 2 != 0 ? 1 : 0);
    }
}

// Every operation on waves that are long enough for an index and a range of addresses, each request
// for memory failing once: an answer is the right one or E_OUTOFMEMORY, and the wave answers
// rightly afterwards.
TEST(SignalWave, EveryAllocationFailsOnceOnLongWaves) {
    constexpr std::int64_t kCount = 40'000;
    WavePtr wave = NewWave();
    IWaveEvent* event = nullptr;
    const auto expect_found = [&] {
        for (const std::int64_t time : {std::int64_t{0}, 5 * kCount, 10 * (kCount - 1)}) {
            ASSERT_EQ(wave->FindEvent(time, FindAt, &event), S_OK);
            ASSERT_EQ(event->GetTime(), time);
        }
    };
    const auto prepare = [&](bool is_searched) {
        wave = NewWave();
        for (std::int64_t i = 0; i < kCount; ++i) {
            ASSERT_EQ(wave->AddEvent(10 * i, 0, "abcd", 4), S_OK);
        }
        if (is_searched) {
            expect_found();
        }
    };
    struct Row {
        const char* name;
        std::function<HRESULT()> operation;
        std::uint32_t done;  // events after it
    };
    const Row rows[] = {
        {"search", [&] { return wave->FindEvent(5 * kCount, FindAt, &event); }, kCount},
        {"remove one", [&] { return wave->RemoveEvent(70); }, kCount - 1},
        {"remove many", [&] { return wave->RemoveEvents(11, 20'009); }, kCount - 1999},
        {"append", [&] { return wave->AddEvent(10 * kCount, 0, "abcd", 4); }, kCount + 1},
        {"commit",
         [&] {
             const HRESULT added = wave->AddPendingEvent(-10, "abcd", 4);
             return added == S_OK ? wave->CommitPendingEvents() : added;
         },
         kCount + 1}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        for (const bool is_searched : {false, true}) {
            ASSERT_NO_FATAL_FAILURE(prepare(is_searched));
            FailEveryAllocation(row.operation, [&](HRESULT result) {
                ASSERT_TRUE(result == S_OK || result == E_OUTOFMEMORY) << result;
                ASSERT_EQ(wave->GetEventCount(), result == S_OK ? row.done : kCount);
                ASSERT_NO_FATAL_FAILURE(expect_found());
                ASSERT_NO_FATAL_FAILURE(prepare(is_searched));
            });
            EXPECT_EQ(wave->GetEventCount(), row.done);
            ASSERT_NO_FATAL_FAILURE(expect_found());
        }
    }
}

// A refused event does not move the stamp.
TEST(SignalWave, StampOfARefusedEvent) {
    const WavePtr wave = NewWave();
    int refused = 0;
    for (std::int64_t time = 0; time < 300; ++time) {
        Add(*wave, time, 5, 'A');
        HRESULT result = S_OK;
        {
            const FailingAlloc failing(1);
            result = wave->AddEvent(time + 1, 9, nullptr, 0);
        }
        if (result == E_OUTOFMEMORY) {
            ++refused;
            EXPECT_EQ(wave->GetLastTime(), time);
            Add(*wave, time, 6, 'B');
            std::uint32_t value = 0;
            wave->GetEventValue(static_cast<std::uint32_t>(time), &value, 4);
            EXPECT_EQ(value, 0x42424242U) << time;
        } else {
            wave->RemoveEvent(time + 1);
        }
    }
    EXPECT_GT(refused, 3);
}

}  // namespace
}  // namespace corv::test
