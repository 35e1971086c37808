#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "corv/stimulus/check_formula.h"
#include "corv/typeinfo/type_info.h"
#include "host/bus_value.h"

namespace corv::host {

// What the values of a vector of single characters may be, by its type.
BusType BusTypeOf(const KTypeInfo& type);

// The formula of a vector with its values written out as the characters of the elements, which is
// how stimuli take them: `X"A5" 0, 255 5ns` as `10100101 0, 11111111 5ns`.
class BusFormula {
public:
    BusFormula(const std::string& formula, const BusType& type);

    // A value that can't be read is all zeros there.
    const std::string& Text() const { return text_; }

    // What is wrong with the values and, by its own check, with the text, in the order and with the
    // places of the formula as it was written.
    std::vector<FormulaProblem> Problems(std::vector<FormulaProblem> of_text) const;

private:
    struct Replaced {
        std::size_t at;        // in the text
        std::string written;   // in its place
        std::size_t length;    // in the text
        std::size_t position;  // in the formula
    };

    void MoveBack(FormulaProblem& problem) const;
    std::size_t PositionOf(std::size_t at) const;

    std::string text_;
    std::vector<Replaced> replaced_;
    std::vector<FormulaProblem> problems_;
};

}  // namespace corv::host
