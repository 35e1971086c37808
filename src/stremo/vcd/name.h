#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace corv::vcd {

struct Range {
    std::int32_t left;
    std::int32_t right;

    std::uint64_t Length() const noexcept {
        return static_cast<std::uint64_t>(left < right ? std::int64_t{right} - left
                                                       : std::int64_t{left} - right) +
               1;
    }
};

// The part between the code of a variable and the $end of its declaration.
struct VariableName {
    std::string name;  // with brackets that are not the range, without blanks before them
    std::optional<Range> range;
};

// Reads a name and its range. The last bracket group is the range if it has `width` elements (for a
// width of 0, any [left:right]); otherwise the group belongs to the name:
//
//     q [3:0], 4          q, 3 downto 0
//     mem[2][7:0], 8      mem[2], 7 downto 0
//     ints[-1], 32        ints[-1]
//     \My Sig\\x\, 1      \My Sig\\x\      (a VHDL name, up to its last backslash)
//     \esc!id [1:0], 2    \esc!id, 1 downto 0   (a Verilog name, up to the first blank)
VariableName ReadVariableName(std::string_view text, std::uint64_t width);

// Returns the name of a scope as it appears before other levels, so that its end can be recognised:
//
//     \my scope\x\      \my scope\\x\   (a VHDL name, its backslashes doubled)
//     \u_1/u_2          \u_1/u_2_       (a Verilog name; the blank that ends it is _ here)
std::string ScopeName(std::string_view name);

// Reads "[left:right]"; returns nullopt for anything else.
std::optional<Range> ReadRange(std::string_view group) noexcept;

}  // namespace corv::vcd
