// The compact notation is converted to an ordinary formula, which is then read like any other:
// evaluation, normal form and splitting need to know only one form.

#include "stimulus/vesk_formula.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>

#include "corv/stimulus/gate_level.h"
#include "corv/stimulus/vesk.h"
#include "corv/util/dec_converter.h"
#include "platform/ascii.h"
#include "platform/guard.h"
#include "util/saturate.h"
#include "util/time_text.h"
#include "util/words.h"

namespace {

using corv::platform::IsDigit;
using corv::platform::IsSpace;
using corv::util::kBaseUnit;
using corv::util::kNotationUnit;

// The latest time that can be written in a formula.
constexpr std::int64_t kMaxTime = 9'200'000'000'000'000'000;

std::string UpperCase(std::string_view text) {
    std::string out(text);
    std::transform(out.begin(), out.end(), out.begin(), corv::platform::Upper);
    return out;
}

// Appends a time in the largest unit in which it is whole: "10ns".
void AppendTime(std::string& out, std::int64_t time) {
    unsigned unit = kBaseUnit;
    corv::util::ScaleWhole(time, unit);
    corv::util::AppendNumber(out, time);
    out += corv::util::kTimeUnits[unit].name;
}

std::size_t SkipDigits(std::string_view text, std::size_t at) noexcept {
    while (at < text.size() && IsDigit(text[at])) {
        ++at;
    }
    return at;
}

// Reads a duration: a number, whose digits may be missing, in a unit. Fractions of a picosecond are
// cut off, unless the unit itself is finer.
std::optional<TTimeUnit<std::int64_t>> ReadDuration(std::string_view number, int unit) noexcept {
    if (number.empty() || number == ".") {
        return TTimeUnit<std::int64_t>(0, static_cast<std::uint32_t>(unit));
    }
    const auto time = corv::util::ReadTimeIn(number, unit);
    if (!time) {
        return std::nullopt;
    }
    TTimeUnit<std::int64_t> out(time->whole, static_cast<std::uint32_t>(time->unit));
    if (time->unit < static_cast<int>(kBaseUnit) && unit > time->unit) {
        out = TTimeUnit<std::int64_t>(out.GetTime());
    }
    return out;
}

}  // namespace

void CVeskValue::AppendText(std::string& out) const {
    if (hexadecimal_) {
        char digits[8];
        const auto end = std::to_chars(digits, digits + sizeof digits, value_, 16).ptr;
        out += "16#";
        std::transform(digits, end, std::back_inserter(out), corv::platform::Upper);
    } else {
        const char std_logic = GateLevel2StdLogic(static_cast<char>(value_));
        out += std_logic != '\0' ? std_logic : static_cast<char>(value_);
    }
}

bool CVeskValue::WriteFormula(std::string& out, std::int64_t& running_time) const {
    if (running_time > kMaxTime) {
        return false;
    }
    AppendText(out);
    out += ' ';
    AppendTime(out, running_time);
    running_time = corv::util::SaturatingAdd(running_time, duration_.GetTime());
    return true;
}

bool CVeskGroup::WriteFormula(std::string& out, std::int64_t& running_time) const {
    if (children_.empty()) {
        return true;
    }
    const std::size_t begin = out.size();
    for (std::uint32_t i = 0; i < repeat_count_; ++i) {
        for (const auto& child : children_) {
            if (!child->WriteFormula(out, running_time)) {
                return false;
            }
            out += ',';
        }
    }
    if (out.size() > begin) {
        out.pop_back();
    }
    return true;
}

bool CVeskGroup::CheckMaxRepeat(std::uint32_t maximum) const noexcept {
    return repeat_count_ <= maximum &&
           std::all_of(children_.begin(), children_.end(),
                       [maximum](const auto& child) { return child->CheckMaxRepeat(maximum); });
}

// A child that writes nothing still writes its comma, so it counts as an entry.
std::uint64_t CVeskGroup::CountEntries() const noexcept {
    std::uint64_t entries = 0;
    for (const auto& child : children_) {
        entries += std::min(std::max<std::uint64_t>(child->CountEntries(), 1),
                            CVeskFormula::kMaxEntries + 1);
    }
    return corv::util::SaturatingMultiply(entries, std::uint64_t{repeat_count_});
}

VeskExtent CVeskGroup::Measure() const noexcept {
    using Front = VeskExtent::Front;
    VeskExtent once;
    if (repeat_count_ == 0 || children_.empty()) {
        return once;
    }
    for (const auto& child : children_) {
        const VeskExtent extent = child->Measure();
        if (extent.last_start >= 0) {
            once.last_start = std::max(once.last_start,
                                       corv::util::SaturatingAdd(once.length, extent.last_start));
        }
        once.length = corv::util::SaturatingAdd(once.length, extent.length);
        once.front = &child == &children_.front() ? extent.front : once.front;
    }
    // A child that writes nothing leaves its comma; only the very last comma is removed.
    if (once.front == Front::Nothing && (children_.size() > 1 || repeat_count_ > 1)) {
        once.front = Front::Comma;
    }
    if (once.last_start >= 0 && repeat_count_ > 1) {
        once.last_start = corv::util::SaturatingAdd(
            corv::util::SaturatingMultiply(once.length, std::int64_t{repeat_count_} - 1),
            once.last_start);
    }
    once.length = corv::util::SaturatingMultiply(once.length, std::int64_t{repeat_count_});
    return once;
}

void CVeskGroup::ForEachValue(const std::function<void(const CVeskValue&)>& visit) const {
    for (const auto& child : children_) {
        child->ForEachValue(visit);
    }
}

// Reads one text, which is already in upper case.
class CVeskFormula::Parser {
public:
    Parser(std::string_view text, CVeskFormula& formula) : text_(text), formula_(formula) {}

    bool ParseGroup(CVeskGroup& group, std::size_t begin, std::size_t end, int depth);

private:
    bool ParseChild(CVeskGroup& group, std::size_t& at, std::size_t end, int depth);
    bool ParseValue(CVeskGroup& group, std::size_t& at, std::size_t end);
    std::unique_ptr<CVeskNode> MakeValue(std::string_view value, std::string_view number, int unit);
    // Records a problem and returns false, which is the result of everything unreadable.
    bool Note(VeskFault fault, std::size_t position, std::size_t length);

    std::string_view text_;
    CVeskFormula& formula_;
};

bool CVeskFormula::Parser::Note(VeskFault fault, std::size_t position, std::size_t length) {
    if (formula_.problems_.size() < kMaxProblems) {
        formula_.problems_.push_back({fault, position, length});
    }
    return false;
}

bool CVeskFormula::Parser::ParseGroup(CVeskGroup& group, std::size_t begin, std::size_t end,
                                      int depth) {
    std::size_t at = begin;
    for (;;) {
        while (at < end && IsSpace(text_[at])) {
            ++at;
        }
        if (at == end) {
            return true;
        }
        if (text_[at] == '(' ? !ParseChild(group, at, end, depth) : !ParseValue(group, at, end)) {
            return false;
        }
    }
}

bool CVeskFormula::Parser::ParseChild(CVeskGroup& group, std::size_t& at, std::size_t end,
                                      int depth) {
    const std::size_t open = at;
    const std::size_t length = corv::util::MatchEnd(text_.substr(open, end - open), ')');
    if (length == std::string_view::npos) {
        return Note(VeskFault::UnmatchedParenthesis, open, 1);
    }
    const std::size_t close = open + length;
    if (close + 1 == end) {
        return Note(VeskFault::NothingAfterGroup, close, 1);
    }
    if (depth == kMaxDepth) {
        formula_.too_deep_ = true;
        return Note(VeskFault::NestedTooDeep, open, 1);
    }
    at = SkipDigits(text_.substr(0, end), close + 1);
    const std::string_view digits = text_.substr(close + 1, at - close - 1);
    auto child = std::make_unique<CVeskGroup>();
    if (!ParseGroup(*child, open + 1, close, depth + 1)) {
        // nesting too deeply makes the whole text unreadable, and has been recorded
        return !formula_.too_deep_ && (Note(VeskFault::GroupDropped, open, close + 1 - open), true);
    }
    std::uint32_t count = 0;
    if (digits.empty()) {
        Note(VeskFault::GroupWithoutCount, close, 1);
    } else if (std::from_chars(digits.data(), digits.data() + digits.size(), count).ec !=
               std::errc()) {
        count = std::numeric_limits<std::uint32_t>::max();
    }
    child->SetRepeatCount(count);
    group.Append(std::move(child));
    return true;
}

bool CVeskFormula::Parser::ParseValue(CVeskGroup& group, std::size_t& at, std::size_t end) {
    const std::size_t begin = at;
    const std::string_view text = text_.substr(0, end);
    std::size_t value_end = begin + 1;
    if (text[begin] == '[') {
        const std::size_t match = corv::util::MatchEnd(text.substr(begin), ']');
        if (match == std::string_view::npos) {
            return Note(VeskFault::UnmatchedBracket, begin, 1);
        }
        value_end += match;
    }
    if (value_end == end) {
        return Note(VeskFault::NothingAfterValue, begin, value_end - begin);
    }
    at = SkipDigits(text, value_end);
    if (at < end && text[at] == '.') {
        if (at + 1 == end) {
            return Note(VeskFault::NothingAfterPoint, at, 1);
        }
        at = SkipDigits(text, at + 1);
    }
    const std::string_view number = text.substr(value_end, at - value_end);
    const int unit = corv::util::FindTimeUnit(text.substr(at, 2));
    at += unit < 0 ? 0 : 2;
    if (auto node = MakeValue(text.substr(begin, value_end - begin), number, unit)) {
        group.Append(std::move(node));
    }
    return true;
}

// Returns null, with the problem recorded, for what cannot be read. A unit of -1 means that none is
// written.
std::unique_ptr<CVeskNode> CVeskFormula::Parser::MakeValue(std::string_view value,
                                                           std::string_view number, int unit) {
    const auto position = static_cast<std::size_t>(value.data() - text_.data());
    const auto drop = [&](VeskFault fault, std::size_t length) {
        Note(fault, position, length);
        return nullptr;
    };
    const bool hexadecimal = value.size() > 1;
    std::int64_t code = static_cast<unsigned char>(value[0]);
    if (hexadecimal) {
        const std::string digits(value.substr(1, value.size() - 2));
        if (c_decConverter().Convert(digits.c_str(), 16, &code) == 0) {
            return drop(VeskFault::NotHexadecimal, value.size());
        }
    } else if (code == 'H' || code == 'L') {
        code = code == 'H' ? std::int64_t{'1'} : std::int64_t{'0'};
    }
    if (number.empty() && unit < 0) {
        return drop(VeskFault::NoDuration, value.size());
    }
    const auto duration = ReadDuration(number, unit < 0 ? static_cast<int>(kNotationUnit) : unit);
    if (!duration) {
        return drop(VeskFault::TooLong, value.size() + number.size());
    }
    if (!hexadecimal && (code == '"' || code == '\'' || code == ',')) {
        Note(VeskFault::NoValue, position, 1);
    } else if (duration->GetTime() == 0) {
        Note(VeskFault::NoLength, position, value.size() + number.size());
    }
    return std::make_unique<CVeskValue>(static_cast<std::uint32_t>(code), *duration, hexadecimal,
                                        position);
}

bool CVeskFormula::Parse(std::string_view text) {
    const std::size_t skipped = static_cast<std::size_t>(
        std::find_if_not(text.begin(), text.end(), IsSpace) - text.begin());
    const std::string copy = UpperCase(text.substr(skipped));
    const std::size_t clock = copy.find("/CLK");
    clock_ = clock != std::string::npos;
    too_deep_ = false;
    problems_.clear();
    root_ = std::make_unique<CVeskGroup>();
    const std::string_view pattern = std::string_view(copy).substr(0, clock);
    const bool read = Parser(pattern, *this).ParseGroup(*root_, 0, pattern.size(), 0);
    for (VeskProblem& problem : problems_) {
        problem.position += skipped;
    }
    return read;
}

bool CVeskFormula::FitsRange() const noexcept {
    const VeskExtent extent = root_ ? root_->Measure() : VeskExtent{};
    return extent.last_start <= kMaxTime && (!clock_ || extent.length <= kMaxTime);
}

bool CVeskFormula::Convert(CString& out) const {
    out.Empty();
    if (IsEmpty() || too_deep_ || CountEntries() > kMaxEntries) {
        return false;
    }
    constexpr std::uint64_t kUsualEntry = 12;  // "0 12345ns,"
    std::string text;
    text.reserve(CountEntries() * kUsualEntry);
    std::int64_t running_time = 0;
    if (!root_->WriteFormula(text, running_time) || (clock_ && running_time > kMaxTime)) {
        return false;
    }
    if (clock_) {
        text += " -r ";
        AppendTime(text, running_time);
    }
    out = CString(std::move(text));
    return true;
}

bool CheckVeskMaxRepeatCount(const char* text, int maximum) noexcept {
    return corv::platform::Guarded(true, [&] {
        CVeskFormula formula;
        return !formula.Parse(text) || formula.CheckMaxRepeat(static_cast<std::uint32_t>(maximum));
    });
}
