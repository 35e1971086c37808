#include "corv/stimulus/check_formula.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>

#include "corv/stimulus/formula_parser.h"
#include "corv/stimulus/stimulus.h"
#include "platform/guard.h"
#include "stimulators/counter_check.h"
#include "stimulus/check_custom_formula.h"
#include "stimulus/formula_text.h"
#include "stimulus/unit_suggestion.h"
#include "stimulus/vector_value.h"
#include "stimulus/vesk_formula.h"
#include "util/time_text.h"

namespace corv {
namespace {

using stimulus::FormulaItem;
using stimulus::FormulaTime;
using Severity = FormulaProblem::Severity;

struct Place {
    std::size_t position;
    std::size_t length;
};

// A word of the formula within a sentence: in backticks, printable, not too long.
std::string Quote(std::string_view word) {
    constexpr std::size_t kMaxQuoted = 40;
    std::string out = "`";
    out += word.substr(0, kMaxQuoted);
    std::replace_if(
        out.begin(), out.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
    out += word.size() > kMaxQuoted ? "...`" : "`";
    return out;
}

// A time in the largest unit in which it is whole.
std::string TimeText(std::int64_t picoseconds) {
    unsigned unit = util::kBaseUnit;
    util::ScaleWhole(picoseconds, unit);
    std::string out;
    util::AppendNumber(out, picoseconds);
    out += ' ';
    out += util::kTimeUnits[unit].name;
    return out;
}

std::string DidYouMean(std::string_view unit, std::string_view otherwise) {
    return unit.empty() ? std::string(otherwise) : "; did you mean " + Quote(unit) + "?";
}

std::string_view LastWord(const FormulaItem& item) noexcept {
    if (!item.unit.empty()) {
        return item.unit;
    }
    return item.time.empty() ? item.value : item.time;
}

// The problems of one formula, in the order of the text.
class ProblemList {
public:
    explicit ProblemList(std::string_view formula) : formula_(formula) {}

    // Where a word, or the text from one word to the end of another, stands in the formula.
    Place PlaceOf(std::string_view first, std::string_view last) const noexcept {
        const auto begin = static_cast<std::size_t>(first.data() - formula_.data());
        const auto end = static_cast<std::size_t>(last.data() - formula_.data()) + last.size();
        return {begin, end - begin};
    }
    Place PlaceOf(std::string_view word) const noexcept { return PlaceOf(word, word); }
    Place Whole() const noexcept { return {0, formula_.size()}; }

    void Error(Place place, std::string sentence) {
        Add(place, Severity::Error, std::move(sentence));
    }
    void Warn(Place place, std::string sentence) {
        Add(place, Severity::Warning, std::move(sentence));
    }
    bool HasErrors() const noexcept {
        return std::any_of(problems_.begin(), problems_.end(),
                           [](const FormulaProblem& p) { return p.severity == Severity::Error; });
    }
    std::vector<FormulaProblem> Take();

private:
    void Add(Place place, Severity severity, std::string sentence) {
        if (problems_.size() < kMaxFormulaProblems * 2) {
            problems_.push_back({place.position, place.length, severity, std::move(sentence)});
        }
    }

    std::string_view formula_;
    std::vector<FormulaProblem> problems_;
};

std::vector<FormulaProblem> ProblemList::Take() {
    std::stable_sort(
        problems_.begin(), problems_.end(),
        [](const FormulaProblem& a, const FormulaProblem& b) { return a.position < b.position; });
    if (problems_.size() > kMaxFormulaProblems) {
        problems_.resize(kMaxFormulaProblems);
        FormulaProblem& last = problems_.back();
        last.length = formula_.size() - last.position;
        last.severity = Severity::Error;
        last.sentence = "there are more problems from here on";
    }
    return std::move(problems_);
}

// What a formula is checked as.
struct CheckedAs {
    std::uint32_t default_unit = 1;
    std::optional<stimulus::VectorShape> vector;
};

// Checks the value and time lists of ordinary formulas.
class OrdinaryChecker {
public:
    OrdinaryChecker(std::string_view formula, const CheckedAs& as, ProblemList& problems)
        : formula_(formula), as_(as), problems_(problems) {}

    void Check();

private:
    void CheckItem(const FormulaItem& item, std::optional<FormulaItem>& timeless);
    void CheckTime(const FormulaItem& item, const FormulaTime& time);
    void CheckUnreadable(const FormulaItem& item);
    void CheckPeriod(const FormulaItem& item, const FormulaTime& time);
    void CheckPatternAgainstPeriod();
    void CheckAbsolutes();
    void Record(const FormulaItem& item, const FormulaTime& time);
    void WarnTimeless(const FormulaItem& item);

    struct Timed {
        std::int64_t time;
        Place place;
    };

    std::string_view formula_;
    const CheckedAs& as_;
    ProblemList& problems_;

    std::size_t values_ = 0;
    std::string_view unitless_time_;  // of the item before, when it was written without a unit
    std::string_view before_timeless_;
    std::optional<std::int64_t> pattern_start_;
    std::int64_t pattern_last_ = 0;
    std::vector<Timed> absolutes_;
    std::optional<Timed> period_;
};

void OrdinaryChecker::Check() {
    stimulus::FormulaReader reader(formula_);
    if (reader.StartsWithComma()) {
        problems_.Error(problems_.PlaceOf(formula_.substr(0, 1)),
                        "the formula begins with a comma; remove it");
        return;
    }
    std::optional<FormulaItem> timeless;
    while (const auto item = reader.Next()) {
        CheckItem(*item, timeless);
    }
    if (values_ == 0) {
        problems_.Error(problems_.Whole(),
                        "the formula holds no value; write values with their times, such as "
                        "`0 0, 1 10ns`");
    }
    if (timeless && period_) {
        // the normal form puts the period behind it, where it would be read as its time
        WarnTimeless(*timeless);
    }
    CheckPatternAgainstPeriod();
    CheckAbsolutes();
}

void OrdinaryChecker::CheckItem(const FormulaItem& item, std::optional<FormulaItem>& timeless) {
    if (timeless) {
        WarnTimeless(*timeless);
        timeless.reset();
    }
    for (const std::string_view word : {item.value, item.time}) {
        if (stimulus::IsUnmatched(word)) {
            problems_.Error(problems_.PlaceOf(word.substr(0, 1)),
                            "no closing character for " + Quote(word.substr(0, 1)) +
                                "; everything behind it is one word");
        }
    }
    if (item.comma_skipped) {
        problems_.Error(problems_.PlaceOf(item.value, LastWord(item)),
                        "a comma behind a blank does not end the element, so " + Quote(item.time) +
                            " is the time of " + Quote(item.value) +
                            "; write the comma directly behind the word before it");
    }
    const FormulaTime time = stimulus::ReadFormulaTime(item, as_.default_unit);
    CheckTime(item, time);
    if (item.is_repeat) {
        CheckPeriod(item, time);
        return;
    }
    ++values_;
    Record(item, time);
    if (as_.vector && !stimulus::VectorValue::Read(item.value, *as_.vector)) {
        problems_.Error(problems_.PlaceOf(item.value),
                        "the value " + Quote(item.value) + " is neither a number nor " +
                            std::to_string(as_.vector->width) + " characters long");
    }
    if (item.time.empty()) {
        before_timeless_ = unitless_time_;
        timeless = item;
    }
    const bool unitless = item.unit.empty() && !item.time.empty() &&
                          util::NumberLength(item.time) == item.time.size();
    unitless_time_ = unitless ? item.time : std::string_view();
}

void OrdinaryChecker::WarnTimeless(const FormulaItem& item) {
    const std::string_view unit =
        before_timeless_.empty() ? std::string_view() : stimulus::NearestUnit(item.value);
    problems_.Warn(problems_.PlaceOf(item.value), "the value " + Quote(item.value) +
                                                      " has no time and counts as 0" +
                                                      DidYouMean(unit, "; write a time behind it"));
}

void OrdinaryChecker::CheckTime(const FormulaItem& item, const FormulaTime& time) {
    if (item.time.empty()) {
        return;
    }
    const Place place = problems_.PlaceOf(item.time, LastWord(item));
    if (!time.readable) {
        CheckUnreadable(item);
    } else if (time.time.value < 0 && !item.is_repeat) {
        problems_.Error(place, "the time " + Quote(item.time) + " is negative; times start at 0");
    } else if (time.fraction_cut) {
        problems_.Warn(place, "the time " + Quote(item.time) + " is cut to " +
                                  TimeText(time.time.GetTime()) +
                                  "; write a fraction with its unit, no finer than 1 ps");
    }
}

void OrdinaryChecker::CheckUnreadable(const FormulaItem& item) {
    std::string_view text = item.time;
    if (!item.is_repeat && text.starts_with('@')) {
        text.remove_prefix(1);
    }
    const Place place = problems_.PlaceOf(item.time, LastWord(item));
    const std::string_view unit = text.substr(util::NumberLength(text));
    if (text.empty()) {
        problems_.Error(place, "there is no time behind `@`");
    } else if (unit.size() == text.size()) {
        problems_.Error(
            place, Quote(text) +
                       (item.is_repeat ? " is not a time" : " is not a time, and counts as 0") +
                       "; write a number with an optional unit, such as `10ns`");
    } else if (unit.empty() || util::FindTimeUnit(unit) >= 0) {
        problems_.Error(place, item.unit.empty() || unit.empty()
                                   ? "the time " + Quote(text) +
                                         " is past the range of 9.2e18 ps, and counts as 0"
                                   : "the time " + Quote(text) + " has two units");
    } else {
        problems_.Error(problems_.PlaceOf(unit),
                        "unknown unit " + Quote(unit) +
                            DidYouMean(stimulus::NearestUnit(unit),
                                       "; the units are fs, ps, ns, us, ms, sec, min and hr"));
    }
}

void OrdinaryChecker::CheckPeriod(const FormulaItem& item, const FormulaTime& time) {
    const Place place = problems_.PlaceOf(item.value, LastWord(item));
    const std::int64_t period = time.time.GetTime();
    if (period_) {
        problems_.Warn(period_->place, "this repeat period is replaced by the one further on");
    }
    period_ = Timed{period, place};
    if (item.time.empty()) {
        problems_.Error(place, "there is no repeat period behind " + Quote(item.value) +
                                   "; write one, such as `-r 20ns`");
    } else if (time.readable && period == 0) {
        problems_.Error(place, "a repeat period of 0 repeats nothing");
    } else if (period < 0) {
        problems_.Error(place,
                        "a repeat period can't be negative; it counts as " +
                            TimeText(-std::max(period, -std::numeric_limits<std::int64_t>::max())));
    }
}

void OrdinaryChecker::Record(const FormulaItem& item, const FormulaTime& time) {
    const std::int64_t at = time.time.GetTime();
    if (time.absolute) {
        absolutes_.push_back({at, problems_.PlaceOf(item.value, LastWord(item))});
        return;
    }
    pattern_last_ = std::max(pattern_last_, at);
    if (!pattern_start_) {
        pattern_start_ = at;
    }
}

void OrdinaryChecker::CheckPatternAgainstPeriod() {
    const std::int64_t length = pattern_last_ - pattern_start_.value_or(pattern_last_);
    if (period_ && period_->time > 0 && length >= period_->time) {
        problems_.Warn(period_->place, "the repeat period of " + TimeText(period_->time) +
                                           " is not longer than the pattern, whose last value "
                                           "stands " +
                                           TimeText(length) + " behind its start");
    }
}

void OrdinaryChecker::CheckAbsolutes() {
    for (const Timed& absolute : absolutes_) {
        if (absolute.time >= 0 && absolute.time < pattern_start_.value_or(0)) {
            problems_.Warn(absolute.place, "the absolute time " + TimeText(absolute.time) +
                                               " lies before the pattern starts at " +
                                               TimeText(*pattern_start_) +
                                               ", so that the value never takes effect");
        }
    }
}

// ---- notation ----

struct FaultRow {
    VeskFault fault;
    std::string_view sentence;
};

constexpr std::array<FaultRow, 11> kFaults{{
    {VeskFault::UnmatchedParenthesis, "no closing parenthesis for this one"},
    {VeskFault::UnmatchedBracket, "no closing bracket for this one"},
    {VeskFault::NothingAfterGroup,
     "the text ends behind this group; write its repeat count, such as `)3`"},
    {VeskFault::NothingAfterValue,
     "the text ends behind this value; write how long it lasts, such as `10NS`"},
    {VeskFault::NothingAfterPoint,
     "the text ends behind this point; write the digits of the "
     "fraction"},
    {VeskFault::NestedTooDeep, "groups nest deeper than 256 levels from here on"},
    {VeskFault::NoDuration, "this value has no duration directly behind it and is left out"},
    {VeskFault::NotHexadecimal,
     "the text in brackets is no hexadecimal number; the value is left "
     "out"},
    {VeskFault::TooLong,
     "the duration of this value is past the range of 9.2e18 ps; the value is "
     "left out"},
    {VeskFault::GroupDropped, "this group can't be read and is left out"},
    {VeskFault::GroupWithoutCount,
     "the group that ends here has no repeat count and contributes "
     "nothing; write one, such as `)1`"},
}};

constexpr std::string_view SentenceOf(VeskFault fault) noexcept {
    return kFaults[static_cast<std::size_t>(fault)].sentence;
}

void CheckNotation(std::string_view formula, const CheckedAs& as, ProblemList& problems) {
    const std::string_view text = stimulus::NotationText(formula);
    const Place place = problems.PlaceOf(text);
    CVeskFormula notation;
    const bool read = notation.Parse(text);
    for (const VeskProblem& problem : notation.Problems()) {
        problems.Error({place.position + problem.position, problem.length},
                       std::string(SentenceOf(problem.fault)));
    }
    if (!read) {
        return;
    }
    CString converted;
    CStringArray list;
    if (notation.IsEmpty()) {
        problems.Error(place,
                       "the notation holds no value; write values with their durations, "
                       "such as `010NS110NS`");
    } else if (notation.CountEntries() > CVeskFormula::kMaxEntries) {
        problems.Error(place,
                       "the notation unrolls to more than 16777216 values; lower its "
                       "repeat counts");
    } else if (!notation.Convert(converted)) {
        problems.Error(place, "the notation runs past the range of 9.2e18 ps");
    } else if (as.vector && CSimpleFormulaParser().Run(converted, list, as.vector->width,
                                                       as.vector->split_mode) == 0) {
        problems.Error(place, "the notation holds a value that does not fit a vector of " +
                                  std::to_string(as.vector->width) + " elements");
    } else if (!problems.HasErrors() && CStimulus(as.default_unit, 1).Create(converted, 0) == 0) {
        problems.Error(place, "the notation holds no value that takes effect");
    }
}

std::vector<FormulaProblem> Check(std::string_view formula, const CheckedAs& as) {
    ProblemList problems(formula);
    const auto refuse = [&](std::string sentence) {
        problems.Error(problems.Whole(), std::move(sentence));
    };
    if (formula.empty()) {
        refuse("the formula is empty; write values with their times, such as `0 0, 1 10ns`");
        return problems.Take();
    }
    if (as.vector && as.vector->width > kMaxVectorWidth) {
        refuse("a vector has at most " + std::to_string(kMaxVectorWidth) + " elements");
        return problems.Take();
    }
    switch (stimulus::FindFormulaKind(formula)) {
        case stimulus::FormulaKind::Ordinary:
            OrdinaryChecker(formula, as, problems).Check();
            break;
        case stimulus::FormulaKind::Notation:
            CheckNotation(formula, as, problems);
            break;
        case stimulus::FormulaKind::Counter:
            if (auto problem = stimulators::CheckCounter(formula, !as.vector)) {
                problems.Error(problems.PlaceOf(problem->place), std::move(problem->sentence));
            }
            break;
        case stimulus::FormulaKind::Custom:
            if (auto problem = stimulus::CheckCustomFormula(formula, !as.vector)) {
                const Place place = problems.PlaceOf(problem->place);
                problem->warning ? problems.Warn(place, std::move(problem->sentence))
                                 : problems.Error(place, std::move(problem->sentence));
            }
            break;
    }
    return problems.Take();
}

std::vector<FormulaProblem> CheckGuarded(const char* formula, const CheckedAs& as) noexcept {
    std::vector<FormulaProblem> problems;
    if (!platform::Done([&] { problems = Check(formula ? formula : "", as); })) {
        // a sentence this short needs no memory of its own
        platform::Done([&] { problems.push_back({0, 0, Severity::Error, "out of memory"}); });
    }
    return problems;
}

}  // namespace

std::vector<FormulaProblem> CheckFormula(const char* formula, std::uint32_t default_unit) noexcept {
    return CheckGuarded(formula, {default_unit, std::nullopt});
}

std::vector<FormulaProblem> CheckVectorFormula(const char* formula, int width, int split_mode,
                                               std::uint32_t default_unit) noexcept {
    return CheckGuarded(formula, {default_unit, stimulus::VectorShape{width, split_mode}});
}

}  // namespace corv
