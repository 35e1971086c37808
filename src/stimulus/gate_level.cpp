#include "corv/stimulus/gate_level.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

namespace {

constexpr std::string_view kStdLogic = "UX01ZWLH-";  // IEEE 1164, in the order of the type

struct GateLevelRow {
    char gate_level;
    char std_logic;
};

constexpr std::array<GateLevelRow, 18> kGateLevels{{
    {'1', '1'},
    {'0', '0'},
    {'H', '1'},
    {'L', '0'},
    {'X', 'X'},
    {'Z', 'Z'},
    {'R', 'X'},
    {'V', 'X'},
    {'.', 'X'},
    {'F', 'X'},
    {'U', '1'},
    {'G', '0'},
    {'S', 'X'},
    {'u', 'X'},
    {'d', 'X'},
    {'l', 'L'},
    {'h', 'H'},
    {'x', 'W'},
}};

// The std_logic character for each gate-level character's code, 0 if there is none. A table by
// code, since the notation looks up every value.
constexpr std::array<char, 256> kByCode = [] {
    std::array<char, 256> table{};
    for (const GateLevelRow& row : kGateLevels) {
        table[static_cast<std::uint8_t>(row.gate_level)] = row.std_logic;
    }
    return table;
}();

}  // namespace

char GateLevel2StdLogic(char value) noexcept {
    return kByCode[static_cast<std::uint8_t>(value)];
}

int GateLevel2StdLogicIndex(char value) noexcept {
    const char std_logic = GateLevel2StdLogic(value);
    return std_logic == '\0' ? -1 : static_cast<int>(kStdLogic.find(std_logic));
}
