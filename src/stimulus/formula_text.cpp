#include "stimulus/formula_text.h"

#include <algorithm>
#include <cmath>

#include "corv/util/time_units.h"
#include "platform/ascii.h"
#include "stimulus/custom_formula.h"
#include "util/time_text.h"
#include "util/words.h"

namespace corv::stimulus {
namespace {

constexpr util::Pairs kPairs{"(\"'", ")\"'"};
constexpr std::string_view kBlanks = " \n\t";
constexpr std::string_view kNotationMark = "/vesk";

constexpr bool IsBlank(char c) noexcept {
    return c == ' ' || c == '\n' || c == '\t';
}
constexpr bool IsSeparator(char c) noexcept {
    return IsBlank(c) || c == ',';
}

constexpr double kMostFemtoseconds = 9.2e18;  // as many as fit into 64 bits

// Reads femtoseconds that are too many for 64 bits by dropping their last three digits, which makes
// them picoseconds.
void TakeAsPicoseconds(std::string_view text, FormulaTime& out) noexcept {
    const std::size_t whole = std::min(text.find_first_not_of("+-0123456789"), text.size());
    const auto picoseconds =
        util::ReadTimeIn(text.substr(0, whole - 3), static_cast<int>(util::kBaseUnit));
    if (picoseconds) {
        out.time.value = picoseconds->whole;
        out.time.unit = util::kBaseUnit;
        const std::string_view left_out = text.substr(whole - 3, 3);
        out.fraction_cut = left_out != "000" || text.substr(whole).starts_with('.');
    }
}

}  // namespace

FormulaReader::Word FormulaReader::ReadWord(std::size_t from) const noexcept {
    Word word{{}, from, false};
    std::size_t begin = from;
    while (begin < text_.size() && IsSeparator(text_[begin])) {
        word.comma_skipped |= text_[begin] == ',';
        ++begin;
    }
    std::size_t end = begin;
    if (begin < text_.size() && kPairs.Closing(text_[begin]) != '\0') {
        end += util::WordLength(text_.substr(begin), kPairs, {});
    } else {
        while (end < text_.size() && !IsSeparator(text_[end])) {
            ++end;
        }
    }
    word.text = text_.substr(begin, end - begin);
    word.end = end;
    return word;
}

bool FormulaReader::ElementEndsAt(std::size_t at) const noexcept {
    return at >= text_.size() || text_[at] == ',';
}

FormulaReader::Word FormulaReader::ReadSameElement(std::size_t from) const noexcept {
    return ElementEndsAt(from) ? Word{{}, from, false} : ReadWord(from);
}

std::optional<FormulaItem> FormulaReader::Next() noexcept {
    const Word value = ReadWord(at_);
    if (value.text.empty()) {
        at_ = text_.size();
        return std::nullopt;
    }
    FormulaItem item;
    item.value = value.text;
    item.is_repeat = IsParameter(value.text);
    at_ = value.end;
    if (const Word time = ReadSameElement(at_); !time.text.empty()) {
        item.time = time.text;
        item.comma_skipped = time.comma_skipped;
        at_ = time.end;
        // A word after the time is its unit if it is one; otherwise it is the next value.
        const Word unit = ReadSameElement(at_);
        if (util::FindTimeUnit(unit.text) >= 0) {
            item.unit = unit.text;
            item.comma_skipped |= unit.comma_skipped;
            at_ = unit.end;
        }
    }
    item.ends_element = ElementEndsAt(at_);
    return item;
}

bool IsUnmatched(std::string_view word) noexcept {
    const char closing = word.empty() ? '\0' : kPairs.Closing(word[0]);
    return closing != '\0' && util::MatchEnd(word, closing) == std::string_view::npos;
}

bool IsParameter(std::string_view word) noexcept {
    return word[0] == '-' &&
           (platform::EqualNoCase(word, "-r") || platform::EqualNoCase(word, "-repeat"));
}

FormulaTime ReadFormulaTime(const FormulaItem& item, std::uint32_t default_unit) noexcept {
    std::string_view text = item.time;
    FormulaTime out{{0, default_unit, util::kBaseUnit}};
    if (text.empty()) {
        return out;
    }
    if (!item.is_repeat && text[0] == '@') {
        out.absolute = true;
        text.remove_prefix(1);
    }
    const std::optional<util::TimeReading> time = util::ReadTime(text, item.unit);
    out.readable = time.has_value();
    if (time) {
        out.time.value = time->whole;
        out.fraction_cut = time->number != static_cast<double>(time->whole) ||
                           (time->unit == 0 && time->whole % util::UnitRatio(0, 1) != 0);
        out.time.unit = time->unit < 0 ? default_unit : static_cast<std::uint32_t>(time->unit);
        if (time->unit == 0 && std::abs(time->number) >= kMostFemtoseconds) {
            TakeAsPicoseconds(text, out);
        }
    }
    return out;
}

void AppendElement(std::string& out, std::string_view value, bool absolute, std::int64_t number,
                   std::string_view unit) {
    out += value;
    out += absolute ? " @" : " ";
    util::AppendNumber(out, static_cast<std::uint64_t>(number));
    out += unit;
}

std::string_view WrittenUnit(const TTimeUnit<std::int64_t>& time) noexcept {
    return time.unit == time.target_unit ? "" : UnitNameFromID(time.unit);
}

FormulaKind FindFormulaKind(std::string_view formula) noexcept {
    if (platform::FindNoCase(formula, kCustomMark) != std::string_view::npos) {
        return FormulaKind::Custom;
    }
    if (platform::FindNoCase(formula, "\\counter") != std::string_view::npos) {
        return FormulaKind::Counter;
    }
    return FindNotation(formula) != std::string_view::npos ? FormulaKind::Notation
                                                           : FormulaKind::Ordinary;
}

std::size_t FindNotation(std::string_view formula) noexcept {
    return platform::FindNoCase(formula, kNotationMark);
}

std::string_view NotationText(std::string_view formula) noexcept {
    const std::size_t mark = FindNotation(formula);
    return mark == std::string_view::npos
               ? std::string_view()
               : util::SkipFront(formula.substr(mark + kNotationMark.size()), kBlanks);
}

}  // namespace corv::stimulus
