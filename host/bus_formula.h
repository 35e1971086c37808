#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "corv/stimulus/check_formula.h"
#include "corv/typeinfo/type_info.h"
#include "host/bus_value.h"

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

    // Returns what is wrong with the values, together with the problems that a check of Text() has
    // found, in the order and with the places of the formula as it was written.
    std::vector<Problem> Problems(std::vector<Problem> of_text) const;

private:
    struct Replaced {
        std::size_t at;        // in the text
        std::string written;   // in the formula as written
        std::size_t length;    // in the text
        std::size_t position;  // in the formula
    };

    void MoveBack(Problem& problem) const;
    std::size_t PositionOf(std::size_t at) const;

    std::string text_;
    std::vector<Replaced> replaced_;
    std::vector<Problem> problems_;
};

}  // namespace corv::host
