#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "corv/util/time_text.h"
#include "host/source.h"

namespace corv::host {

// The formula of a vector, which is split into one stimulus per element.
struct VectorFormula {
    std::string formula;
    int width = 1;
    bool words = false;                    // values are split into words instead of characters
    TimeUnit unit = TimeUnit::Picosecond;  // of times without one
    std::int64_t at = 0;                   // when the stimuli begin, in picoseconds
    bool typed = false;  // the vector's type is known: an undriven element is kNotDriven
};

bool IsCounter(std::string_view formula);

// Returns the vector as one source: its value is the characters of all elements, or their words
// with kBetweenWords between them. Returns null if the formula cannot be split.
std::unique_ptr<Source> MakeVector(const VectorFormula& vector);

// Joins several sources, which may be of different types, to one vector of words. An element
// without a value yet is kNotDriven.
std::unique_ptr<Source> JoinSources(std::vector<std::unique_ptr<Source>> elements);

// Returns one source per element, element 0 (the most significant) first; empty if the formula
// cannot be split.
std::vector<std::unique_ptr<Source>> MakeElements(const VectorFormula& vector);

// Returns a counter that drives one signal with its whole value; null if the formula cannot be used
// in that way.
std::unique_ptr<Source> MakeWholeCounter(const std::string& formula, std::int64_t at);

}  // namespace corv::host
