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

// Where the two stand in the formula: the file up to the first comma after the mark, the signal
// after it, both without white space at their ends. Nothing without a comma.
struct CustomParts {
    std::string_view file;
    std::string_view signal;
};
std::optional<CustomParts> FindCustomParts(std::string_view formula) noexcept;

// What a stimulus reads. Nothing when one is missing or empty.
std::optional<CustomFormula> ReadCustomFormula(std::string_view formula);

// What is read to be split: blanks at the ends of the parts belong to them, and the signal ends at
// the next comma.
std::optional<CustomFormula> ReadCustomToSplit(std::string_view formula);

std::string WriteCustomFormula(const CustomFormula& formula);

}  // namespace corv::stimulus
