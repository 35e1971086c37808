#include <corv/corv.h>

#include <cstdint>
#include <cstdio>

// Walks a clock from event to event, as a host would, and tells whether it ticked as it should.
int main() {
    CClock clock;
    clock.SetRateUnit(2);  // 10 MHz
    CString formula;
    clock.GenerateFormula(formula, 1, nullptr);

    CStimulus stimulus;
    std::int64_t time = -1;
    int ticks = 0;
    for (stimulus.Create(formula, 0); ticks < 4 && time <= 100000; ++ticks) {
        time = stimulus.GetNextEventTime(time);
        CString value;
        stimulus.GetValue(time, value);
        if (time != std::int64_t{ticks} * 50000 || value != (ticks % 2 == 0 ? "1" : "0")) {
            std::printf("%s: `%s` at %lld\n", static_cast<const char*>(formula),
                        static_cast<const char*>(value), static_cast<long long>(time));
            return 1;
        }
    }
    return ticks == 4 && corv::CheckFormula(formula).empty() && *corv::Version() != '\0' ? 0 : 1;
}
