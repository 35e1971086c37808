#pragma once

#include <optional>
#include <string>
#include <string_view>

// Formulas that replay a recorded signal: "/custom run.evt, top.clk". They are read in lower case.
namespace corv::stimulus {

inline constexpr std::string_view kCustomMark = "/custom";

struct CustomFormula {
    std::string file;
    std::string signal;
};

// What a stimulus reads: the file up to the first comma behind the mark, the signal behind it, both
// without white space at their ends. Nothing when one is missing.
std::optional<CustomFormula> ReadCustomFormula(std::string_view formula);

// What is read to be split: blanks behind the parts belong to them, and the signal ends at the next
// comma.
std::optional<CustomFormula> ReadCustomToSplit(std::string_view formula);

std::string WriteCustomFormula(const CustomFormula& formula);

}  // namespace corv::stimulus
