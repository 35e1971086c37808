#pragma once

#include <string>
#include <string_view>

#include "corv/stimulus/check_formula.h"

namespace corv::host {

// Where a position is: line and column, from 1, the column in bytes; and the text of the line.
struct TextPlace {
    std::size_t line;
    std::size_t column;
    std::string_view line_text;
};
TextPlace PlaceOf(std::string_view text, std::size_t position);

// Describes a problem in the form that editors parse, with the place marked below it. A long line
// is cut around the place:
//
//     clk:1:8: error: unknown unit `xs`; did you mean `ns`?
//     0 0, 1 10xs
//            ^~~~
std::string DescribeProblem(std::string_view source, std::string_view text, const Problem& problem,
                            bool colour);

}  // namespace corv::host
