#pragma once

#include <cstdint>
#include <random>
#include <string>

namespace corv::test {

// Numbers from a seed that a failing test prints.
class Random {
public:
    explicit Random(std::uint32_t seed) : engine_(seed) {}

    std::uint64_t Bits() { return engine_(); }
    // 0 to `limit` - 1.
    std::size_t Below(std::size_t limit) { return static_cast<std::size_t>(engine_() % limit); }
    bool OneIn(std::size_t n) { return Below(n) == 0; }
    template <std::size_t N>
    const char* Pick(const char* const (&texts)[N]) {
        return texts[Below(N)];
    }

private:
    std::mt19937_64 engine_;
};

// A formula of `size` elements: quoted and bracketed values, ties, absolute, fractional, missing
// and unreadable times, a repeat period that may be shorter than the pattern.
inline std::string RandomFormula(Random& random, std::size_t size) {
    static constexpr const char* kValues[] = {"0",       "1",     "X",   "'Z'",     "\"01X Z\"",
                                              "(a,(b))", "16#FF", "'-'", "running", "\"\""};
    static constexpr const char* kUnits[] = {"",   "",    "",   "",   "",   "",
                                             "ps", " fs", "ns", "fs", " NS"};
    static constexpr const char* kOdd[] = {"abc", "@",     "1e3", "5xs", "1.5ns",
                                           "0.5", ".25us", "7.",  "+3"};
    static constexpr const char* kBetween[] = {", ", ",", ",,", " , ", ", ,", " ", "\t", ",\n"};
    const std::size_t span = random.OneIn(3) ? size / 2 + 1 : 20 * size + 10;
    const bool absolute_only = random.OneIn(8);
    const bool may_be_odd = random.OneIn(3);
    std::string out;
    const auto add_period = [&] {
        out += random.OneIn(2) ? " -r " : ", -REPEAT ";
        out += std::to_string(random.Below(random.OneIn(2) ? span + span / 4 + 2 : span / 2 + 2));
        out += random.Pick(kUnits);
    };
    for (std::size_t i = 0; i < size; ++i) {
        out += random.Pick(kValues);
        if (may_be_odd && random.OneIn(9)) {
            out += random.OneIn(2) ? "," : std::string(" ") + random.Pick(kOdd) + ",";
            continue;
        }
        out += absolute_only || random.OneIn(6) ? " @" : " ";
        out += std::to_string(i == 0 && random.OneIn(2) ? 0 : random.Below(span));
        out += random.Pick(kUnits);
        out += i + 1 == size ? "" : random.Pick(kBetween);
        if (may_be_odd && random.OneIn(2 * size)) {
            add_period();
            out += ", ";
        }
    }
    if (!random.OneIn(3)) {
        add_period();
    }
    return out;
}

// One to three bytes changed, put in or taken out.
inline std::string Mutate(Random& random, std::string text) {
    static constexpr char kBytes[] = "()[]'\"@,-r. \t\n0159xnsNSps/\\{}#\x7f\xff\x80\x01";
    for (std::size_t changes = 1 + random.Below(3); changes > 0 && !text.empty(); --changes) {
        const std::size_t at = random.Below(text.size());
        const char byte = kBytes[random.Below(sizeof kBytes - 1)];
        if (random.OneIn(3)) {
            text.erase(at, 1);
        } else if (random.OneIn(2)) {
            text.insert(at, 1, byte);
        } else {
            text[at] = byte;
        }
    }
    return text;
}

}  // namespace corv::test
