#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "corv/stimulus/check_formula.h"
#include "corv/typeinfo/type_info.h"
#include "host/bus_value.h"
#include "host/formula_words.h"

namespace corv::host {

// Returns what the values of a vector of single characters may be, according to its type.
BusType BusTypeOf(const KTypeInfo& type);

// The formula of a vector with its values written out as the characters of the elements, which is
// the form that stimuli read: `X"A5" 0, 255 5ns` as `10100101 0, 11111111 5ns`.
class BusFormula {
public:
    BusFormula(const std::string& formula, const BusType& type);

    // A value that cannot be read becomes all zeros, so that the rest of the formula can still be
    // checked.
    const std::string& Text() const { return text_; }

    // Returns what is wrong with the formula as it was written, in the order of the places.
    // `default_unit` is the unit of times written without one.
    std::vector<Problem> Check(TimeUnit default_unit) const;

private:
    std::string formula_;
    std::string text_;
    int width_;
    bool has_values_;
    std::vector<WordPlace> unread_;  // values that the library reads
    std::vector<Problem> problems_;  // of the other values
};

}  // namespace corv::host
