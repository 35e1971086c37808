#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/json.h"
#include "cli/problems.h"

// State texts, "100ns;200ns;1us": the times at which a stimulator switches on and off in turns.
namespace corv::cli {

struct SwitchTime {
    std::int64_t time;
    bool on;
};

struct StateText {
    std::vector<SwitchTime> states;  // in the order of time
    std::string normal;              // as the library writes it
};
StateText ReadStates(const std::string& text);

// What is odd about a state text that stands at an offset of the text that the problems are about:
// times that can't be read, that do not ascend, that lose a fraction.
void CheckStates(std::string_view text, std::size_t offset, ProblemList& problems);

// A time of any sign, in the given unit or in the largest one without a fraction.
std::string StateTime(std::int64_t time, std::optional<unsigned> unit = std::nullopt);

// [{"time":100000,"on":true}, ...]
Json StatesJson(const std::vector<SwitchTime>& states);

}  // namespace corv::cli
