#include "stimulus/custom_formula.h"

#include <algorithm>

#include "platform/ascii.h"
#include "util/words.h"

namespace corv::stimulus {
namespace {

constexpr std::string_view kBlanks = " \n\t";
constexpr std::string_view kWhiteSpace = " \t\n\v\f\r";

// Splits the text after the mark at its first comma; returns nullopt without a mark or comma.
std::optional<CustomParts> Cut(std::string_view formula) noexcept {
    const std::size_t mark = platform::FindNoCase(formula, kCustomMark);
    if (mark == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view text = formula.substr(mark + kCustomMark.size());
    const std::size_t comma = text.find(',');
    if (comma == std::string_view::npos) {
        return std::nullopt;
    }
    return CustomParts{text.substr(0, comma), text.substr(comma + 1)};
}

std::optional<CustomFormula> InLowerCase(std::string_view file, std::string_view signal) {
    if (file.empty() || signal.empty()) {
        return std::nullopt;
    }
    CustomFormula formula{std::string(file), std::string(signal)};
    for (std::string* text : {&formula.file, &formula.signal}) {
        std::transform(text->begin(), text->end(), text->begin(), platform::Lower);
    }
    return formula;
}

}  // namespace

std::optional<CustomParts> FindCustomParts(std::string_view formula) noexcept {
    auto parts = Cut(formula);
    if (parts) {
        parts->file = util::TrimEnds(parts->file, kWhiteSpace);
        parts->signal = util::TrimEnds(parts->signal, kWhiteSpace);
    }
    return parts;
}

std::optional<CustomFormula> ReadCustomFormula(std::string_view formula) {
    const auto parts = FindCustomParts(formula);
    return parts ? InLowerCase(parts->file, parts->signal) : std::nullopt;
}

std::optional<CustomFormula> ReadCustomToSplit(std::string_view formula) {
    const auto halves = Cut(formula);
    if (!halves) {
        return std::nullopt;
    }
    const std::string_view signal = halves->signal.substr(0, halves->signal.find(','));
    return InLowerCase(util::SkipFront(halves->file, kBlanks), util::SkipFront(signal, kBlanks));
}

std::string WriteCustomFormula(const CustomFormula& formula) {
    return std::string(kCustomMark) + " " + formula.file + "," + formula.signal;
}

}  // namespace corv::stimulus
