#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace corv::host {

struct NamedFormula {
    std::string name;
    std::string formula;
    std::string type;  // what stands behind the name: a width or a VHDL type, empty without one
};

// Splits "NAME=FORMULA", "NAME:WIDTH=FORMULA" and "NAME:TYPE=FORMULA". A name has no blank, comma
// or quote in it and does not begin with a parenthesis, except inside an extended identifier (\a
// name\). Without one the name is "f" and the number: "0 0, 1 10" as the second formula is named
// "f2". A formula that itself holds a "=" early is written behind a lone "=".
NamedFormula SplitNamedFormula(std::string_view text, std::size_t number);

}  // namespace corv::host
