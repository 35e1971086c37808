#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/source.h"

namespace corv::host {

// The formula of a vector, cut into one stimulus per element.
struct VectorFormula {
    std::string formula;
    int width = 1;
    bool words = false;      // values are cut into words instead of characters
    std::uint32_t unit = 1;  // of times without one
    std::int64_t at = 0;     // when the stimuli begin, in picoseconds
    bool typed = false;      // the vector's type is known: what is not driven yet is kNotDriven
};

bool IsCounter(std::string_view formula);

// The vector as one signal: its value is the characters of all elements, or their words with
// kBetweenWords between them. Null when the formula can't be cut.
std::unique_ptr<Source> MakeVector(const VectorFormula& vector);

// Several sources as one vector of words, which may be of different types: what has no value yet is
// kNotDriven.
std::unique_ptr<Source> JoinSources(std::vector<std::unique_ptr<Source>> elements);

// One signal per element, element 0 (the most significant) first; empty when the formula can't be
// cut.
std::vector<std::unique_ptr<Source>> MakeElements(const VectorFormula& vector);

// A counter that drives one signal with its whole value; null when the formula can't be used so.
std::unique_ptr<Source> MakeWholeCounter(const std::string& formula, std::int64_t at);

}  // namespace corv::host
