#pragma once

#include <optional>
#include <string>
#include <string_view>

// Formulas that replay a recorded signal: "/custom run.evt, top.clk". They are converted to lower
// case when read; files and signals are therefore found without regard to case.
namespace corv::stimulus {

inline constexpr std::string_view kCustomMark = "/custom";

struct CustomFormula {
    std::string file;
    std::string signal;
};

// Returns where file and signal are in the formula: the file before the first comma after the mark,
// the signal after it, both without white space at their ends. Returns nullopt without a comma.
struct CustomParts {
    std::string_view file;
    std::string_view signal;
};
std::optional<CustomParts> FindCustomParts(std::string_view formula) noexcept;

// Returns what a stimulus reads, nullopt if either part is missing or empty.
std::optional<CustomFormula> ReadCustomFormula(std::string_view formula);

// Returns what splitting reads: trailing blanks belong to the parts, and the signal ends at the
// next comma.
std::optional<CustomFormula> ReadCustomToSplit(std::string_view formula);

std::string WriteCustomFormula(const CustomFormula& formula);

}  // namespace corv::stimulus
