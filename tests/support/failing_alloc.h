#pragma once

#include <gtest/gtest.h>

namespace corv::test {

// While armed, requests of this thread to operator new are counted and the n-th one fails
// (`sticky`: that one and all that follow). Disarming gives whether a request has failed.
void ArmFailingAlloc(long nth, bool sticky) noexcept;
bool DisarmFailingAlloc() noexcept;

// Calls `prepare`, and `action` with the first, second, ... request failing, alone and with all
// that follow, and `check` with its result after each failure, until a run asks for less than it is
// granted.
template <class Prepare, class Action, class Check>
void FailEveryAllocation(Prepare prepare, Action action, Check check) {
    for (const bool sticky : {false, true}) {
        bool failed = true;
        int nth = 0;
        for (; failed && nth < 20'000; ++nth) {
            prepare();
            ArmFailingAlloc(nth + 1, sticky);
            const auto result = action();
            failed = DisarmFailingAlloc();
            if (failed) {
                check(result);
            }
        }
        EXPECT_TRUE(nth > 1 && !failed) << "failures: " << nth - 1;
    }
}

}  // namespace corv::test
