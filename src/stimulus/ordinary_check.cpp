// Checks a list of values and times, item by item as CStimulus reads them, and then the values as a
// whole: which of them can never take effect.

#include <algorithm>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "stimulus/formula_check.h"
#include "stimulus/formula_text.h"
#include "stimulus/misspelt_repeat.h"
#include "stimulus/odd_words.h"
#include "util/quote.h"
#include "util/suggest.h"
#include "util/time_text.h"
#include "util/unit_suggestion.h"

namespace corv::stimulus {
namespace {

using util::DidYouMean;
using util::Quote;
using Place = ProblemList::Place;

// Like FormatTime, but the whole check fails if memory runs out.
std::string TimeText(std::int64_t picoseconds) {
    std::string out;
    util::AppendTime(out, picoseconds);
    return out;
}

std::string_view LastWord(const FormulaItem& item) noexcept {
    if (!item.unit.empty()) {
        return item.unit;
    }
    return item.time.empty() ? item.value : item.time;
}

bool IsUnitless(const FormulaItem& item) noexcept {
    return item.unit.empty() && !item.time.empty() &&
           util::NumberLength(item.time) == item.time.size();
}

// Returns whether a problem explains why the next value has no time, which needs no report then.
bool EndsOddly(const FormulaItem& item) noexcept {
    return item.comma_skipped || (!item.time.empty() && IsParameter(item.time));
}

class OrdinaryChecker {
public:
    OrdinaryChecker(std::string_view formula, const CheckedAs& as, ProblemList& problems)
        : formula_(formula), as_(as), problems_(problems) {}

    void Check();

private:
    struct Timed {
        std::int64_t time;
        std::string_view value;
        Place place;
        bool reported;  // another problem of it is in the list
    };

    bool CheckItem(const FormulaItem& item);
    bool CheckSpaces(const FormulaItem& item);
    void CheckWords(const FormulaItem& item);
    bool CheckTime(const FormulaItem& item, const FormulaTime& time);
    void CheckUnreadable(const FormulaItem& item);
    void CheckPeriod(const FormulaItem& item, const FormulaTime& time);
    void CheckEnd();
    void CheckHidden();
    void CheckAgainstPattern(const Timed& relative);
    void CheckEqualTimes(std::vector<Timed> values);
    void CheckReplaced();
    void CheckAbsolutes();
    void WarnTimeless();
    std::string TimelessRemedy() const;
    void WarnHidden(const Timed& value, const std::string& why) {
        problems_.Warn(value.place,
                       "the value " + Quote(value.value) + " never takes effect: " + why);
    }

    std::string_view formula_;
    const CheckedAs& as_;
    ProblemList& problems_;

    std::size_t values_ = 0;
    std::optional<FormulaItem> before_;    // the item before
    std::optional<FormulaItem> timeless_;  // the item before, if it is a value without a time
    std::optional<FormulaItem> before_timeless_;
    std::vector<Timed> relatives_;
    std::vector<Timed> absolutes_;
    std::optional<Timed> period_;
};

void OrdinaryChecker::Check() {
    FormulaReader reader(formula_);
    if (reader.StartsWithComma()) {
        problems_.Error(problems_.PlaceOf(formula_.substr(0, 1)),
                        "the formula begins with a comma; remove it");
        return;
    }
    while (const auto item = reader.Next()) {
        if (!CheckItem(*item)) {
            return;
        }
        before_ = item;
    }
    CheckEnd();
}

// Returns false if the words were split wrongly; further problems would only follow from that.
bool OrdinaryChecker::CheckItem(const FormulaItem& item) {
    // The first value may do without a time, unless the normal form puts the period directly after
    // it, where it would be read as the value's time.
    if (timeless_ && (values_ > 1 || item.is_repeat)) {
        WarnTimeless();
    }
    timeless_.reset();
    if (!CheckSpaces(item)) {
        return false;
    }
    CheckWords(item);
    const FormulaTime time = ReadFormulaTime(item, as_.default_unit);
    const bool time_is_fine = CheckTime(item, time);
    if (item.is_repeat) {
        CheckPeriod(item, time);
        return true;
    }
    ++values_;
    const std::string_view name = NameBefore(item.value);
    if (values_ == 1 && !item.time.empty() && !name.empty()) {
        problems_.Warn(problems_.PlaceOf(name), Quote(name) +
                                                    " is read as part of the value; a formula "
                                                    "begins with its first value");
    }
    const Place place = problems_.PlaceOf(item.value, LastWord(item));
    bool reported = !time_is_fine;
    if (const auto meant = MisspeltRepeat(item, formula_)) {
        problems_.Warn(
            place, Quote(item.value) + " is read as a value; did you mean " + Quote(*meant) + "?");
        reported = true;
    } else if (item.time.empty()) {
        reported = values_ > 1;
        if (!IsUnmatched(item.value) && !(before_ && EndsOddly(*before_))) {
            timeless_ = item;
            before_timeless_ = before_;
        }
    }
    (time.absolute ? absolutes_ : relatives_)
        .push_back({time.time.GetTime(), item.value, place, reported});
    if (as_.vector) {
        CheckVectorValue(item.value, *as_.vector, problems_.PlaceOf(item.value), problems_);
    }
    return true;
}

bool OrdinaryChecker::CheckSpaces(const FormulaItem& item) {
    for (const std::string_view word : {item.value, item.time}) {
        const bool bracketed =
            !word.empty() && std::string_view("(\"'").find(word[0]) != std::string_view::npos;
        const std::string_view space = bracketed ? std::string_view() : NameOddSpace(word);
        if (!space.empty()) {
            problems_.Error(problems_.PlaceOf(word),
                            "a " + std::string(space) +
                                " is not a blank here and becomes part of a word; use spaces, tabs "
                                "and line feeds only");
            return false;
        }
    }
    return true;
}

void OrdinaryChecker::CheckWords(const FormulaItem& item) {
    for (const std::string_view word : {item.value, item.time}) {
        if (IsUnmatched(word)) {
            problems_.Error(problems_.PlaceOf(word.substr(0, 1)),
                            "no closing character for " + Quote(word.substr(0, 1)) +
                                "; everything after it is one word");
        }
    }
    if (item.comma_skipped) {
        problems_.Error(problems_.PlaceOf(item.value, LastWord(item)),
                        "a comma after a blank does not end the element, so " + Quote(item.time) +
                            " is the time of " + Quote(item.value) +
                            "; write the comma directly after the word before it");
    }
}

// Returns whether the time is usable; reports its problems.
bool OrdinaryChecker::CheckTime(const FormulaItem& item, const FormulaTime& time) {
    if (item.time.empty()) {
        return true;
    }
    const Place place = problems_.PlaceOf(item.time, LastWord(item));
    const std::int64_t picoseconds = time.time.GetTime();
    if (!time.readable) {
        CheckUnreadable(item);
    } else if (time.time.value < 0 && !item.is_repeat) {
        problems_.Error(place, "the time " + Quote(item.time) + " is negative; times start at 0");
    } else if (picoseconds > kMaxTime || picoseconds < -kMaxTime) {
        problems_.Error(place, "the time " + Quote(item.time) + ", which is in " +
                                   std::string(util::kTimeUnits[time.time.unit].name) +
                                   ", is past the range of 9.2e18ps");
    } else if (time.fraction_cut) {
        problems_.Warn(place, "the time " + Quote(item.time) + " is cut to " +
                                  TimeText(picoseconds) +
                                  "; write a fraction with its unit, no finer than 1ps");
        return true;
    } else {
        return true;
    }
    return false;
}

void OrdinaryChecker::CheckUnreadable(const FormulaItem& item) {
    std::string_view text = item.time;
    if (!item.is_repeat && text.starts_with('@')) {
        text.remove_prefix(1);
    }
    const Place place = problems_.PlaceOf(item.time, LastWord(item));
    const std::string_view unit = text.substr(util::NumberLength(text));
    if (text.empty()) {
        problems_.Error(place, "there is no time after `@`");
    } else if (IsParameter(text)) {
        problems_.Error(place, Quote(text) + " stands where the time of " + Quote(item.value) +
                                   " is expected; write that time before it");
    } else if (!item.unit.empty() && util::FindTimeUnit(unit) >= 0) {
        problems_.Error(place, "the time " + Quote(text) + " has two units");
    } else {
        // an unknown unit is shown alone, anything else with the time that it spoils
        const util::TimeComplaint complaint = util::ComplainOfTime(text);
        const bool whole = complaint.place.size() == text.size();
        problems_.Error(whole ? place : problems_.PlaceOf(complaint.place),
                        complaint.reason + (whole ? ", and counts as 0" : "") + complaint.remedy);
    }
}

void OrdinaryChecker::CheckPeriod(const FormulaItem& item, const FormulaTime& time) {
    const Place place = problems_.PlaceOf(item.value, LastWord(item));
    const std::int64_t period = time.time.GetTime();
    if (period_) {
        problems_.Warn(period_->place, "this repeat period is replaced by the one further on");
    }
    period_ = Timed{period, item.value, place, false};
    if (item.time.empty()) {
        problems_.Error(place, "there is no repeat period after " + Quote(item.value) +
                                   "; write one, such as `-r 20ns`");
    } else if (time.readable && period == 0) {
        problems_.Error(place, "a repeat period of 0 repeats nothing");
    } else if (period < 0 && period >= -kMaxTime) {
        problems_.Error(place,
                        "a repeat period cannot be negative; it counts as " + TimeText(-period));
    }
}

void OrdinaryChecker::CheckEnd() {
    if (values_ == 0) {
        problems_.Error(problems_.Whole(),
                        "the formula holds no value; write values with their times, such as "
                        "`0 0, 1 10ns`");
    }
    if (timeless_ && (values_ > 1 || period_)) {
        WarnTimeless();
    }
    CheckHidden();
}

void OrdinaryChecker::WarnTimeless() {
    problems_.Warn(
        problems_.PlaceOf(timeless_->value),
        "the value " + Quote(timeless_->value) + " has no time and counts as 0" + TimelessRemedy());
}

// Returns what the last value without a time may have been meant to be.
std::string OrdinaryChecker::TimelessRemedy() const {
    const std::string_view value = timeless_->value;
    if (value.starts_with('@') && value.size() > 1) {
        return "; a value has one time only, write another value before this one";
    }
    if (before_timeless_ && IsUnitless(*before_timeless_)) {
        const std::string_view number = before_timeless_->time;
        const char* const end = number.data() + number.size();
        if (end + 1 == value.data() && *end == ',' && util::NumberLength(value) > 0 &&
            util::ReadTime(value)) {
            return "; did you mean " + Quote(std::string(number) + "." + std::string(value)) +
                   ", with a decimal point?";
        }
        if (const std::string_view unit = util::NearestUnit(value); !unit.empty()) {
            return DidYouMean(unit, {});
        }
    }
    return "; write a time after it";
}

// ---- values that never take effect ----

void OrdinaryChecker::CheckHidden() {
    for (const Timed& relative : relatives_) {
        if (!relative.reported) {
            CheckAgainstPattern(relative);
        }
    }
    CheckEqualTimes(relatives_);
    CheckEqualTimes(absolutes_);
    CheckReplaced();
    CheckAbsolutes();
}

// The pattern starts at the time of its first value, in formula order, and ends a period later. A
// value exactly at the end is fine if it equals the first one, as it is common to write both.
void OrdinaryChecker::CheckAgainstPattern(const Timed& relative) {
    const Timed& first = relatives_.front();
    if (first.reported) {
        return;
    }
    if (relative.time < first.time) {
        WarnHidden(relative, "the pattern starts at " + TimeText(first.time) +
                                 ", the time of its first value; write the earliest value first");
        return;
    }
    const std::int64_t after = relative.time - first.time;
    const bool repeats = period_ && period_->time > 0;
    const bool is_next_start = repeats && after == period_->time && relative.value == first.value;
    if (repeats && after >= period_->time && !is_next_start) {
        WarnHidden(relative, "it comes " + TimeText(after) +
                                 " after the start of the pattern, which repeats every " +
                                 TimeText(period_->time));
    }
}

// Of values at equal times the first one counts.
void OrdinaryChecker::CheckEqualTimes(std::vector<Timed> values) {
    std::stable_sort(values.begin(), values.end(),
                     [](const Timed& a, const Timed& b) { return a.time < b.time; });
    for (std::size_t i = 1, first = 0; i < values.size(); ++i) {
        if (values[i].time != values[first].time) {
            first = i;
        } else if (!values[i].reported) {
            WarnHidden(values[i], Quote(values[first].value) + " has the same time, " +
                                      TimeText(values[i].time) + ", and comes first");
        }
    }
}

// Without repetition, a relative value never takes effect at the time of an absolute one.
void OrdinaryChecker::CheckReplaced() {
    if (period_ || absolutes_.empty()) {
        return;
    }
    std::vector<std::int64_t> times;
    times.reserve(absolutes_.size());
    for (const Timed& absolute : absolutes_) {
        if (!absolute.reported) {
            times.push_back(absolute.time);
        }
    }
    std::sort(times.begin(), times.end());
    for (const Timed& relative : relatives_) {
        if (!relative.reported && std::binary_search(times.begin(), times.end(), relative.time)) {
            WarnHidden(relative, "an absolute value has the same time, " + TimeText(relative.time));
        }
    }
}

void OrdinaryChecker::CheckAbsolutes() {
    const std::int64_t start = relatives_.empty() ? 0 : relatives_.front().time;
    for (const Timed& absolute : absolutes_) {
        if (!absolute.reported && absolute.time < start) {
            problems_.Warn(absolute.place, "the absolute time " + TimeText(absolute.time) +
                                               " is before the pattern starts at " +
                                               TimeText(start) +
                                               ", so that the value never takes effect");
        }
    }
}

}  // namespace

void CheckOrdinary(std::string_view formula, const CheckedAs& as, ProblemList& problems) {
    OrdinaryChecker(formula, as, problems).Check();
}

}  // namespace corv::stimulus
