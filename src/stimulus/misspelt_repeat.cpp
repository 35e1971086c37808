#include "stimulus/misspelt_repeat.h"

#include <algorithm>
#include <array>

#include "platform/ascii.h"

namespace corv::stimulus {
namespace {

// The longest come first, so that each is matched as a whole.
constexpr std::array<std::string_view, 4> kSpellings{"repeats", "repeat", "rep", "r"};

// Returns whether the word follows a blank within an element.
bool IsInsideElement(std::string_view word, std::string_view formula) noexcept {
    std::size_t at = static_cast<std::size_t>(word.data() - formula.data());
    while (at > 0 && platform::IsSpace(formula[at - 1])) {
        --at;
    }
    return at > 0 && formula[at - 1] != ',';
}

}  // namespace

std::optional<std::string> MisspeltRepeat(const FormulaItem& item, std::string_view formula) {
    const std::string_view value = item.value;
    const std::size_t dashes = std::min(value.find_first_not_of('-'), value.size());
    const std::string_view word = value.substr(dashes);
    const auto spelling = std::find_if(kSpellings.begin(), kSpellings.end(), [&](auto name) {
        return platform::EqualNoCase(word.substr(0, name.size()), name);
    });
    if (spelling == kSpellings.end()) {
        return std::nullopt;
    }
    std::string_view rest = word.substr(spelling->size());
    const bool joined = rest.starts_with('=') || rest.starts_with(':');
    rest.remove_prefix(joined ? 1 : 0);
    const bool number = !rest.empty() && platform::IsDigit(rest[0]);
    if ((!rest.empty() && !number) || (dashes == 0 && (spelling->size() == 1 || number != joined ||
                                                       !IsInsideElement(value, formula)))) {
        return std::nullopt;
    }
    const std::string_view period = number ? rest : item.time;
    return period.empty() ? "-r" : "-r " + std::string(period);
}

}  // namespace corv::stimulus
