#pragma once

#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "corv/stimulus/check_formula.h"

namespace corv::host {

// Infers the type of a formula that does not name one from its values, as a type-description
// string: std_logic if all of them are its letters, else integer, real, or an enumeration of
// identifiers. Returns nullopt if none of these fits.
std::optional<std::string> InferType(const std::set<std::string>& values);

// Returns warnings about single characters that are not values of std_logic, if other values of the
// formula are 0 or 1 and all of them together have no type: "0 0, Q 5ns".
std::vector<Problem> StrayLetters(const std::string& formula);

// Returns an enumeration with a literal for each character.
std::string CharacterType(std::string_view characters);
// Returns an enumeration of that many literals, named by NumberedLiteral.
std::string NumberedType(std::size_t count);
std::string NumberedLiteral(std::size_t position);

// Returns a vector of elements, numbered downto 0. One of more than 256 elements, the most that a
// dimension of a signal may have, becomes a record of vectors.
std::string VectorType(int width, const std::string& element);

// Returns X for 'X' and "X"; anything else unchanged.
std::string_view WithoutQuotes(std::string_view value);

}  // namespace corv::host
