#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace corv::host {

struct NamedFormula {
    std::string name;
    std::string formula;
    std::string type;  // what follows the name: a width or a VHDL type, or empty
};

// Splits "NAME=FORMULA", "NAME:WIDTH=FORMULA" and "NAME:TYPE=FORMULA". A name contains no blank,
// comma or quote and does not begin with a parenthesis, except inside an extended identifier (\a
// name\). Without a name it is "f" and the number: "0 0, 1 10" as the second formula is named "f2".
// A formula that contains an early "=" itself can be written after a single "=".
NamedFormula SplitNamedFormula(std::string_view text, std::size_t number);

}  // namespace corv::host
