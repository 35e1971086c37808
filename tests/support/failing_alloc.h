#pragma once

#include <gtest/gtest.h>

namespace corv::test {

// While armed, requests of this thread to operator new are counted and the n-th one fails
// (`sticky`: that one and all that follow). Disarming gives whether a request has failed.
void ArmFailingAlloc(long nth, bool sticky) noexcept;
bool DisarmFailingAlloc() noexcept;

// Armed for as long as it lives.
class FailingAlloc {
public:
    explicit FailingAlloc(long nth, bool sticky = false) noexcept { ArmFailingAlloc(nth, sticky); }
    FailingAlloc(const FailingAlloc&) = delete;
    FailingAlloc& operator=(const FailingAlloc&) = delete;
    ~FailingAlloc() { DisarmFailingAlloc(); }
};

// Calls `action` with the first, second, ... request failing and `check` with its result after each
// failure, until a run asks for less than it is granted. Gives the number of failures.
template <class Action, class Check>
int FailEveryAllocation(Action action, Check check, bool sticky = false) {
    constexpr int kMost = 20'000;
    for (int failures = 0; failures < kMost; ++failures) {
        ArmFailingAlloc(failures + 1, sticky);
        const auto result = action();
        if (!DisarmFailingAlloc()) {
            return failures;
        }
        check(result);
    }
    ADD_FAILURE() << "no end to the requests";
    return kMost;
}

// The same with `prepare` called before each run, unarmed; requests fail alone and with all that
// follow. At least one must fail.
template <class Prepare, class Action, class Check>
void FailEveryAllocation(Prepare prepare, Action action, Check check) {
    for (const bool sticky : {false, true}) {
        prepare();
        const int failures = FailEveryAllocation(
            action,
            [&](const auto& result) {
                check(result);
                prepare();
            },
            sticky);
        EXPECT_GT(failures, 0);
    }
}

// The same for an action that then answers `failure` and leaves what `show` says as `left`.
template <class Prepare, class Action, class Result, class Show, class Left>
void FailsLeaving(Prepare prepare, Action action, Result failure, Show show, const Left& left) {
    FailEveryAllocation(prepare, action, [&](const auto& result) {
        EXPECT_EQ(result, failure);
        EXPECT_EQ(show(), left);
    });
}

// The same for one that leaves it as it was.
template <class Prepare, class Action, class Result, class Show>
void FailsUnchanged(Prepare prepare, Action action, Result failure, Show show) {
    prepare();
    FailsLeaving(prepare, action, failure, show, show());
}

}  // namespace corv::test
