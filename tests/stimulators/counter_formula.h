#pragma once

#include "tests/support/test.h"

namespace corv::test {

// How a counter is set up. Start and increment are 64-bit patterns; a direction of 1 is up.
struct CounterSetup {
    int type = 1;
    int dir = 1;
    unsigned width = 4;
    bool reverse = false;
    std::uint64_t start = 0;
    std::uint64_t increment = 1;
};

// The digits of a value; in radix 10 it is a signed one.
inline std::string CounterDigits(std::uint64_t value, unsigned radix) {
    std::string out = radix == 10 ? std::to_string(static_cast<std::int64_t>(value)) : "";
    for (; out.empty() || (radix != 10 && value != 0); value /= radix) {
        out.insert(out.begin(), "0123456789abcdef"[value % radix]);
    }
    return out;
}

inline std::string CounterFormula(const CounterSetup& setup, const std::string& period,
                                  unsigned radix = 10) {
    return "\\counter\\TYPE\\" + std::to_string(setup.type) + "\\DIR\\" +
           std::to_string(setup.dir) + "\\RADIX\\" + std::to_string(radix) + "\\START\\" +
           CounterDigits(setup.start, radix) + "\\INC\\" + CounterDigits(setup.increment, radix) +
           "\\PERIOD\\" + period + "\\REV\\" + (setup.reverse ? "1" : "0");
}

inline std::string CounterReference(int wire, int handle) {
    return "\\counter\\wire\\" + std::to_string(wire) + "\\handle\\" + std::to_string(handle);
}

}  // namespace corv::test
