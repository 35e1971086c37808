#pragma once

#include <algorithm>
#include <bitset>
#include <cstdint>
#include <string>

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

// A counter by its step rules, bit by bit. Values have 64 bits; wires of a higher weight carry 0.
class CounterModel {
public:
    // What the wires show before and after a count, the most significant one first.
    struct Shown {
        std::string before;
        std::string after;
    };

    explicit CounterModel(const CounterSetup& setup) : setup_(setup), current_(setup.start) {
        for (unsigned i = setup.width; setup.type == 2 && i-- > 1;) {
            current_[i - 1] = current_[i - 1] != current_[i];
        }
    }

    Shown Step() {
        const Bits next = Next();  // may replace the current value
        const Shown shown{Show(current_), Show(next)};
        current_ = next;
        return shown;
    }

private:
    using Bits = std::bitset<192>;  // bits from 64 on stay 0
    static Bits Cut(const Bits& bits, unsigned size) { return bits & ~(~Bits() << size); }

    Bits Next() {
        const std::uint64_t number = current_.to_ullong();
        const bool up = setup_.dir == 1;
        switch (setup_.type) {
            case 1:
            case 2:
                return Bits(up ? number + setup_.increment : number - setup_.increment);
            case 3:
                return NextJohnson(up);
            case 4:
            case 5:
                return NextOfRing(up, setup_.type == 4);
            default:
                return Cut(~Bits(), 64);
        }
    }

    Bits NextJohnson(bool up) const {
        const unsigned last = setup_.width - 1;
        Bits next = up ? current_ << 1 : current_ >> 1;
        if (up) {
            next[0] = !current_[last];
        } else {
            next[63] = current_[63];
            next[last] = next[last] || !current_[0];
        }
        return Cut(next, 64);
    }

    // One bit, the mark, differs from all others and moves.
    Bits NextOfRing(bool up, bool mark) {
        current_ = current_.none() ? Ring(0, mark) : current_;
        const unsigned last = setup_.width - 1;
        const unsigned end = std::min(setup_.width, 64U);
        unsigned place = 0;
        while (place < end && current_[place] != mark) {
            ++place;
        }
        place = place == end ? 0 : place;
        return up ? Ring(place == last ? 0 : place + 1, mark)
                  : Ring(place == 0 ? last : place - 1, mark);
    }

    Bits Ring(unsigned place, bool mark) const {
        Bits bits = Bits().set(place);
        return Cut(mark ? bits : ~bits, std::min(setup_.width, 64U));
    }

    std::string Show(Bits bits) const {
        if (setup_.type == 2) {
            bits = Cut(bits, setup_.width);
            bits ^= bits >> 1;
        }
        std::string out;
        for (unsigned wire = 0; wire < setup_.width; ++wire) {
            const unsigned weight = setup_.width - 1 - wire;
            out += weight < 64 && bits[setup_.reverse ? wire : weight] ? '1' : '0';
        }
        return out;
    }

    CounterSetup setup_;
    Bits current_;
};

}  // namespace corv::test
