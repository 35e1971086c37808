#include "corv/waves/signal_wave.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/failing_alloc.h"
#include "tests/support/table.h"

namespace corv::test {
namespace {

struct Releaser {
    void operator()(IUnknown* object) const { object->Release(); }
};
using Wave = std::unique_ptr<ISignalWave, Releaser>;
using Enumerator = std::unique_ptr<IWaveEventEnumerator, Releaser>;

Wave NewWave(std::uint32_t type = 4) {
    ISignalWave* wave = nullptr;
    EXPECT_EQ(CreateSignalWave(type, &wave), S_OK);
    return Wave(wave);
}
Enumerator NewEnumerator(ISignalWave& wave) {
    IWaveEventEnumerator* events = nullptr;
    EXPECT_EQ(wave.CreateEnumerator(&events), S_OK);
    return Enumerator(events);
}

HRESULT Add(ISignalWave& wave, std::int64_t time, std::uint32_t stamp, char value) {
    const std::string bytes(4, value);
    return wave.AddEvent(time, stamp, bytes.data(), 4);
}

// The events as text: "10A 20B1" are one at 10 of bytes A and one at 20 of bytes B with flags 1.
std::string Text(ISignalWave& wave) {
    std::string text;
    IWaveEvent* event = nullptr;
    for (const Enumerator events = NewEnumerator(wave); events->Next(1, &event, nullptr) == S_OK;) {
        const char value = *static_cast<const char*>(event->GetValueData());
        text += text.empty() ? "" : " ";
        text += std::to_string(event->GetTime()) + (value == 0 ? '0' : value);
        text += event->GetFlags() == 0 ? "" : std::to_string(event->GetFlags());
    }
    return text;
}

TEST(SignalWave, TypesAndTheirValueSizes) {
    for (std::uint32_t type = 0; type < 70; ++type) {
        ISignalWave* made = nullptr;
        const HRESULT result = CreateSignalWave(type, &made);
        const bool known = type == 1 || type == 2 || type == 4 || type == 8;
        ASSERT_EQ(result, known ? S_OK : E_OUTOFMEMORY) << type;
        ASSERT_EQ(made != nullptr, known);
        if (known) {
            EXPECT_EQ(Wave(made)->GetValueSize(), type == 8 ? 8U : 4U);
        }
    }
}

// An operation a word: "a10/5A" adds at 10 with stamp 5 the value A, "m" marked, "p10A" pending;
// "!" commits, "x" clears, "r15,30" removes.
constexpr const char* kStories = R"(
a10/5A a10/3B                | 10A
a10/3A a10/5B                | 10B
a10/5A a10/3B a10/4C a10/5D  | 10D
a10/5A m10/1B                | 10B3
a10/5A m10/1B m10/1C         | 10C3
m10/1A a10/1B                | 10B1
m10/5A a10/4B m20/1C         | 10A1 20C1
a10/5A x a20/0A a20/0B       | 20B
a10/1A a20/1B p5C p3D p1E !  | 1E 3D 5C 10A 20B
a10/1A p5C ! p3D !           | 3D 5C 10A
p5C p5D x a10/1A             | 10A
p5C p5D x a10/1A !           | 5D 5C 10A
p5A a10/5B x ! a5/3C         | 5C
a1/1A a2/1B a3/1C r30,15     | 1A 2B 3C
a10/1A a20/1B a30/1C r30,15  | 10A
a10/1A a20/1B a30/1C r-1,15  | 20B 30C
a10/1A a20/1B a30/1C r15,-1  | 10A
a10/1A a20/1B a30/1C r35,-1  | 10A 20B 30C
a10/1A a20/1B a30/1C r21,29  | 10A 20B 30C
a10/1A a20/1B a30/1C r-1,-1  | _
a20/1A a10/1B a20/1C         | 20A 10B 20C
)";

void Do(ISignalWave& wave, const std::string& word) {
    const char* at = word.c_str() + 1;
    char* end = nullptr;
    const std::int64_t time = std::strtoll(at, &end, 10);
    const std::int64_t second = *end == '/' || *end == ',' ? std::strtoll(end + 1, &end, 10) : 0;
    const std::string value(4, *end);
    const auto stamp = static_cast<std::uint32_t>(second);
    switch (word[0]) {
        case 'a':
            EXPECT_EQ(wave.AddEvent(time, stamp, value.data(), 4), S_OK);
            break;
        case 'm':
            EXPECT_EQ(wave.AddMarkedEvent(time, stamp, value.data(), 4), S_OK);
            break;
        case 'p':
            EXPECT_EQ(wave.AddPendingEvent(time, value.data(), 4), S_OK);
            break;
        case '!':
            EXPECT_EQ(wave.CommitPendingEvents(), S_OK);
            break;
        case 'x':
            EXPECT_EQ(wave.Clear(), S_OK);
            break;
        default:
            wave.RemoveEvents(time, second);
    }
}

TEST(SignalWave, Stories) {
    for (const auto& row : Table(kStories)) {
        const Wave wave = NewWave();
        for (const std::string& word : Split(row[0], ' ')) {
            if (!word.empty()) {
                Do(*wave, word);
            }
        }
        EXPECT_EQ(Text(*wave), row[1]) << row[0];
    }
}

constexpr const char* kSearches = R"(
time | at | before | after | at or before | at or after
5    | -  | -      | 10    | -            | 10
10   | 10 | -      | 20    | 10           | 10
20   | 20 | 10     | 30    | 20           | 20
25   | -  | 20     | 30    | 20           | 30
30   | 30 | 20     | -     | 30           | 30
35   | -  | 30     | -     | 30           | -
)";

TEST(SignalWave, SearchModes) {
    const Wave wave = NewWave();
    const Wave empty = NewWave();
    for (const std::int64_t time : {10, 20, 30}) {
        Add(*wave, time, 0, 'A');
    }
    const auto rows = Table(kSearches);
    for (std::size_t row = 1; row < rows.size(); ++row) {
        for (std::uint32_t mode = 0; mode < 5; ++mode) {
            IWaveEvent* event = nullptr;
            const HRESULT result = wave->FindEvent(Int(rows[row][0]), mode, &event);
            const std::string found = result == S_OK ? std::to_string(event->GetTime()) : "-";
            EXPECT_EQ(found, rows[row][mode + 1]) << rows[row][0] << " " << rows[0][mode + 1];
            EXPECT_EQ(empty->FindEvent(Int(rows[row][0]), mode, &event), E_FAIL);
        }
    }
}

// An event that was handed out stays where it is until the next change, whatever is asked first.
TEST(SignalWave, QuestionsMoveNoEvent) {
    for (std::int64_t count = 1; count < 9000; count += count / 3 + 1) {
        for (int first = 0; first < 3; ++first) {
            const Wave wave = NewWave();
            const Enumerator events = NewEnumerator(*wave);
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
    const Wave wave = NewWave(8);
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
    const Wave wave = NewWave(8);
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
    ISignalWave* made = nullptr;
    EXPECT_EQ(FailEveryAllocation([&] { return CreateSignalWave(8, &made); },
                                  [&](HRESULT result) {
                                      EXPECT_EQ(result, E_OUTOFMEMORY);
                                      EXPECT_EQ(made, nullptr);
                                  }),
              1);
    const Wave wave(made);
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
    IWaveEventEnumerator* events = nullptr;
    expect([&] { return wave->CreateEnumerator(&events); });
    const Enumerator owner(events);
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
    Wave wave = NewWave();
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
    const Wave wave = NewWave();
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
