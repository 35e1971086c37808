#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace corv::bench {

// A VCD file of about so many bytes as a digital simulation writes it: 1,000 signals in 20 units,
// each with a clock enable, control bits, counters and data buses of 8 to 32 bits; one clock drives
// them all. Some 11 bytes for each change. The same text for the same size.
class VcdInput {
public:
    std::string Make(std::size_t bytes) {
        Declare();
        text_.reserve(bytes + 4096);
        for (std::uint64_t time = 0; text_.size() < bytes; time += 2500) {
            Step(time);
        }
        return std::move(text_);
    }

private:
    struct Variable {
        std::string code;
        unsigned width;
        bool counts;
        std::uint64_t value = 0;
    };

    static std::string CodeOf(std::size_t number) {
        std::string code(1, static_cast<char>('!' + number % 94));
        for (number /= 94; number > 0; number /= 94) {
            code += static_cast<char>('!' + number % 94);
        }
        return code;
    }

    void Add(const std::string& name, unsigned width, bool counts) {
        const std::string code = CodeOf(variables_.size());
        variables_.push_back({code, width, counts});
        text_ += "$var wire " + std::to_string(width) + " " + code + " " + name;
        text_ += width > 1 ? " [" + std::to_string(width - 1) + ":0] $end\n" : " $end\n";
    }

    void Declare() {
        text_ = "$timescale 1ps $end\n$scope module bench $end\n";
        Add("clk", 1, false);
        for (int unit = 0; unit < 20; ++unit) {
            text_ += "$scope module unit" + std::to_string(unit) + " $end\n";
            for (unsigned i = 0; i < 50 - (unit == 0 ? 1U : 0U); ++i) {
                const bool bus = i % 5 == 4;
                const bool counts = bus && i % 2 == 0;
                Add((bus ? "bus" : "bit") + std::to_string(i), bus ? 8 * (1 + i / 5 % 4) : 1,
                    counts);
            }
            text_ += "$upscope $end\n";
        }
        text_ += "$upscope $end\n$enddefinitions $end\n";
    }

    // The clock toggles; at its rising edge one signal in forty changes.
    void Step(std::uint64_t time) {
        text_ += "#" + std::to_string(time) + "\n";
        Change(variables_[0], variables_[0].value ^ 1);
        if (variables_[0].value == 0) {
            return;
        }
        for (std::size_t i = 1 + random_() % 40; i < variables_.size(); i += 1 + random_() % 79) {
            Variable& variable = variables_[i];
            const std::uint64_t mask = (std::uint64_t{1} << variable.width) - 1;
            const bool flips = variable.width == 1 || variable.counts;
            Change(variable, (flips ? variable.value + 1 : random_()) & mask);
        }
    }

    void Change(Variable& variable, std::uint64_t value) {
        variable.value = value;
        if (variable.width == 1) {
            text_ += random_() % 200 == 0 ? 'x' : static_cast<char>('0' + value);
        } else {
            text_ += 'b';
            for (unsigned bit = variable.width; bit-- > 0;) {
                text_ += static_cast<char>('0' + (value >> bit & 1));
            }
            text_ += ' ';
        }
        text_ += variable.code;
        text_ += '\n';
    }

    std::mt19937_64 random_{7};
    std::string text_;
    std::vector<Variable> variables_;
};

}  // namespace corv::bench
