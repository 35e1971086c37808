#include "corv/records/stim_state.h"

#include "tests/support/test.h"

namespace corv::test {
namespace {

// The times of a walk, each with the state that begins there: "10+ 20- 30+".
std::string Show(CStimState& states) {
    std::string text;
    std::int64_t last = -2;
    for (std::int64_t time = states.FirstState(); last != time; time = states.NextState()) {
        text += time == -1 ? ""
                           : (text.empty() ? "" : " ") + std::to_string(time) +
                                 (states.IsOn(time) ? "+" : "-");
        last = time;
    }
    return text;
}

std::string Stored(const CStimState& states) {
    std::string text(states.Store(nullptr, 0), '?');
    EXPECT_EQ(states.Store(text.data(), static_cast<unsigned>(text.size())), text.size());
    return text.substr(0, text.find('\0'));
}

// text | the times read | the text written
TEST(StimState, ReadsAndWritesTexts) {
    for (const auto& row : Table(R"(
        100ns;200ns;1us     | 100000+ 200000- 1000000+ | 100ns;200ns;1us
        10;x;20;30xs;30     | 10+ 20- 30+              | 10ps;20ps;30ps
        ;;10;;20;           | 10+ 20-                  | 10ps;20ps
        10;10;20            | 20+                      | 20ps
        10;20;20;30         | 10+ 30-                  | 10ps;30ps
        30;10;20            | 10- 20+ 30+              | 10ps;20ps;30ps
        1.5ns;1999fs;2.9    | 1- 2+ 1500+              | 1ps;2ps;1500ps
        0;3600sec           | 0+ 3600000000000000-     | 0ps;1hr
        -5ns;90sec          | -5000+ 90000000000000-   | -5ns;90sec
        9007199254740993;1hr | 3600000000000000- 9007199254740993+ | 1hr;9007199254740993ps
         1ns; 2ns;3 ns      | 1000+                    | 1ns
        x;;y                | _                        | _
        _                   | _                        | _)")) {
        CStimState states;
        EXPECT_TRUE(states.Create(row[0].c_str())) << row[0];
        EXPECT_EQ(Show(states), row[1]) << row[0];
        EXPECT_EQ(states.Store(nullptr, 0), row[2].empty() ? 0 : row[2].size() + 1);
        EXPECT_EQ(Stored(states), row[2]) << row[0];
    }
    CStimState states;
    EXPECT_FALSE(states.Create(nullptr));
    EXPECT_TRUE(states.Create("10;20"));
    EXPECT_TRUE(states.Create("30;40"));
    EXPECT_EQ(Show(states), "10+ 20- 30+ 40-");
}

TEST(StimState, StoresWhatFits) {
    CStimState states;
    ASSERT_TRUE(states.Create("10ns;20ns"));
    constexpr unsigned kNeeded = 10;
    for (unsigned size = 1; size < kNeeded + 3; ++size) {
        std::vector<char> buffer(size, '?');
        const bool fits = size >= kNeeded;
        EXPECT_EQ(states.Store(buffer.data(), size), fits ? kNeeded : 0);
        EXPECT_STREQ(buffer.data(), fits ? "10ns;20ns" : "");
    }
    char text[] = "old";
    EXPECT_EQ(CStimState().Store(text, sizeof text), 0U);
    EXPECT_STREQ(text, "");
}

// What the description of Add leaves in a plain map.
void AddPlain(std::map<std::int64_t, bool>& states, std::int64_t time, bool on) {
    if (states.empty() && !on) {
        return;
    }
    states[time] = on;
    bool before = !on;
    for (const auto& [t, state] : states) {
        before = t < time ? state : before;
    }
    if (before == on) {
        states.erase(time);
    }
    if (states.size() == 1 && !states.begin()->second) {
        states.clear();
    }
}

TEST(StimState, AddsAsAPlainMapDoes) {
    std::mt19937 random(11);
    constexpr std::int64_t kEnds[] = {INT64_MIN, INT64_MAX, -1, 0};
    for (int round = 0; round < 300; ++round) {
        CStimState states;
        std::map<std::int64_t, bool> plain;
        for (int i = 0; i < 40; ++i) {
            const auto pick = random();
            const std::int64_t time =
                pick % 16 == 0 ? kEnds[pick / 16 % 4] : static_cast<std::int64_t>(pick / 16 % 12);
            const bool on = pick >> 30 & 1;
            states.FirstState();  // a walk that the change may catch on any entry
            for (auto steps = random() % 4; steps > 0; --steps) {
                states.NextState();
            }
            states.Add(time, on);
            AddPlain(plain, time, on);
            states.NextState();

            std::int64_t walked = states.FirstState();
            for (const auto& [t, state] : plain) {
                ASSERT_EQ(walked, t) << "round " << round << ", change " << i;
                ASSERT_EQ(states.IsOn(t), state);
                walked = states.NextState();
            }
            ASSERT_EQ(walked, -1);
            const auto behind = plain.upper_bound(time);
            EXPECT_EQ(states.IsOn(time), behind != plain.begin() && std::prev(behind)->second);
        }
    }
}

TEST(StimState, CopiesWalkOnTheirOwn) {
    CStimState states;
    ASSERT_TRUE(states.Create("10;20;30"));
    states.FirstState();
    CStimState copy(states);
    CStimState at_end;
    at_end = copy;
    at_end.NextState();
    at_end.NextState();
    CStimState of_end(at_end);
    states.Add(20, true);  // which ends the entry that the walk stands at
    EXPECT_EQ(states.NextState(), 30);
    EXPECT_EQ(copy.NextState(), 20);
    EXPECT_EQ(at_end.NextState(), -1);
    EXPECT_EQ(of_end.NextState(), -1);
    const CStimState& same = copy;
    copy = same;
    EXPECT_EQ(copy.NextState(), 30);
    EXPECT_EQ(CStimState().NextState(), -1);
}

TEST(StimState, FailsWithoutMemory) {
    CStimState states;
    const auto prepare = [&] {
        states = CStimState();
        states.Create("10;20");
    };
    FailEveryAllocation(
        prepare, [&] { return states.Create("30;40;50"); },
        [&](bool result) {
            EXPECT_FALSE(result);
            const std::string text = Show(states);
            EXPECT_EQ(std::string("10+ 20- 30+ 40- 50+").substr(0, text.size()), text);
        });
    const auto fill = [&] {
        prepare();
        states.Create("30;40;50;60;70");
    };
    const auto show = [&] { return Show(states); };
    FailsUnchanged(
        fill, [&] { return states.Store(nullptr, 0); }, 0U, show);
    FailsUnchanged(
        fill, [&] { return CStimState(states).FirstState(); }, -1, show);
}

}  // namespace
}  // namespace corv::test
