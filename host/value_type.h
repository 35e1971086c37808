#pragma once

#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "corv/stimulus/check_formula.h"

namespace corv::host {

// The type-description string of the values that a formula has, when it doesn't say a type:
// std_logic where all of them are one of its letters, else integer, real, or an enumeration of
// identifiers. Nothing when none of these fits.
std::optional<std::string> InferType(const std::set<std::string>& values);

// Warnings about single characters that are no values of std_logic, where others of the formula's
// values are 0 or 1 and all of them together have no type: "0 0, Q 5ns".
std::vector<FormulaProblem> StrayLetters(const std::string& formula);

// An enumeration with a literal for each character.
std::string CharacterType(std::string_view characters);
// An enumeration of so many literals, named by NumberedLiteral.
std::string NumberedType(std::size_t count);
std::string NumberedLiteral(std::size_t position);

// A vector of elements, numbered downto 0. One of more than 256 elements, the most that a dimension
// of a signal may have, is a record of vectors.
std::string VectorType(int width, const std::string& element);

// 'X' and "X" as X; anything else as it is.
std::string_view WithoutQuotes(std::string_view value);

}  // namespace corv::host
