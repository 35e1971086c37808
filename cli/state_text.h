#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "cli/json.h"
#include "cli/problems.h"

// State texts, "100ns;200ns;1us": the times at which a stimulator is switched on and off
// alternately.
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

// Adds what is odd about a state text: times that cannot be read, that do not ascend, or that lose
// a fraction. `offset` is the place of the state text in the text that the problems refer to.
void CheckStates(std::string_view text, std::size_t offset, CappedProblems& problems);

// [{"time":100000,"on":true}, ...]
Json StatesJson(const std::vector<SwitchTime>& states);

}  // namespace corv::cli
