#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "stimulus/problem_list.h"
#include "stimulus/vector_value.h"

// The checks of formulas by their kinds.
namespace corv::stimulus {

// What a formula is checked for.
struct CheckedAs {
    std::uint32_t default_unit = 1;
    std::optional<VectorShape> vector;
};

// Checks a list of values and times.
void CheckOrdinary(std::string_view formula, const CheckedAs& as, ProblemList& problems);

// Checks a formula in the compact notation, without unrolling it.
void CheckNotation(std::string_view formula, const CheckedAs& as, ProblemList& problems);

// Checks one value of a vector at a place of the formula.
void CheckVectorValue(std::string_view value, VectorShape shape, ProblemList::Place place,
                      ProblemList& problems);

}  // namespace corv::stimulus
