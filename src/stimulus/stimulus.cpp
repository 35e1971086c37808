// Reads and evaluates formulas. A stimulus has a pattern of relative elements, which may repeat,
// and absolute elements. At any time the element that began last counts; at equal times the
// absolute one does.
//
//
// Times may come close to the ends of 64 bits, and a start may be negative. Differences of times
// are therefore computed as unsigned numbers, which cannot overflow, and sums are checked.

#include "corv/stimulus/stimulus.h"

#include <algorithm>
#include <string>

#include "corv/stimulators/counter.h"
#include "corv/stimulus/custom_stimulus.h"
#include "platform/guard.h"
#include "stimulus/custom_formula.h"
#include "stimulus/element_index.h"
#include "stimulus/formula_text.h"
#include "stimulus/vesk_formula.h"
#include "util/saturate.h"
#include "util/time_text.h"

using corv::stimulus::FormulaItem;
using corv::stimulus::FormulaKind;
using corv::stimulus::FormulaReader;
using Time = TTimeUnit<std::int64_t>;

CStimulus::CStimulus() noexcept : CStimulus(1, 1) {}

CStimulus::CStimulus(std::uint32_t default_unit, std::uint32_t repeat_target_unit) noexcept
    : start_time_(0, repeat_target_unit, repeat_target_unit),
      repeat_period_(0, default_unit, repeat_target_unit),
      pattern_offset_(0, repeat_target_unit, repeat_target_unit),
      repeat_target_unit_(repeat_target_unit),
      default_unit_(default_unit) {}

CStimulus::~CStimulus() = default;

void CStimulus::Destroy() noexcept {
    index_.reset();
    elements_.clear();
    start_time_ = Time(0, default_unit_);
    repeat_period_ = Time(0, default_unit_);
    pattern_offset_ = Time(0);
    custom_.reset();
    counter_.reset();
}

int CStimulus::Create(const char* formula, std::int64_t start) noexcept {
    Destroy();
    if (!formula || !*formula) {
        return 0;
    }
    const bool read = corv::platform::Guarded(false, [&] { return ReadFormula(formula, start); });
    start_time_.value = start;
    SetOffset();
    return BuildIndex() && read && (custom_ || counter_ || !elements_.empty()) ? 1 : 0;
}

// Without memory for the index no element stays, since none could be found.
bool CStimulus::BuildIndex() noexcept {
    if (!elements_.empty() && !corv::platform::Done([this] {
            index_ = std::make_unique<corv::stimulus::ElementIndex>(elements_);
        })) {
        elements_.clear();
        return false;
    }
    return true;
}

bool CStimulus::ReadFormula(std::string_view formula, std::int64_t start) {
    switch (corv::stimulus::FindFormulaKind(formula)) {
        case FormulaKind::Ordinary:
            return ReadElements(formula);
        case FormulaKind::Notation: {
            CVeskFormula notation;
            CString converted;
            return notation.Parse(corv::stimulus::NotationText(formula)) &&
                   notation.Convert(converted) && ReadElements(converted.View());
        }
        case FormulaKind::Counter:
            return CreateCounter(formula, start);
        case FormulaKind::Custom:
            return CreateCustom(formula, start);
    }
    return false;
}

bool CStimulus::CreateCustom(std::string_view formula, std::int64_t start) {
    const auto parts = corv::stimulus::ReadCustomFormula(formula);
    if (!parts) {
        return false;
    }
    auto custom = std::make_unique<CCustomStimulus>(start);
    if (custom->Create(parts->file.c_str(), parts->signal.c_str()) == 0) {
        return false;
    }
    custom_ = std::move(custom);
    return true;
}

bool CStimulus::CreateCounter(std::string_view formula, std::int64_t start) {
    // Counters are read in any case; their texts are stored in lower case.
    CString lower(formula);
    lower.MakeLower();
    auto counter = std::make_unique<CCounterRef>();
    if (!counter->Init(lower, start)) {
        return false;
    }
    counter_ = std::move(counter);
    return true;
}

bool CStimulus::ReadElements(std::string_view formula) {
    FormulaReader reader(formula);
    if (reader.StartsWithComma()) {
        return false;
    }
    while (const auto item = reader.Next()) {
        if (item->is_repeat) {
            SetParameter(*item);
        } else if (!SetValue(*item)) {
            return false;
        }
    }
    return true;
}

void CStimulus::SetParameter(const FormulaItem& item) noexcept {
    repeat_period_ = corv::stimulus::ReadFormulaTime(item, default_unit_).time;
    repeat_period_.target_unit = repeat_target_unit_;
}

bool CStimulus::SetValue(const FormulaItem& item) {
    const auto time = corv::stimulus::ReadFormulaTime(item, default_unit_);
    if (time.time.GetTime() < 0) {
        return false;
    }
    auto element = std::make_unique<CSimpleStimulus>();
    element->value_ += item.value;
    element->time_ = time.time;
    element->absolute_ = time.absolute ? 1 : 0;
    if (item.time.empty()) {
        element->time_.target_unit = repeat_target_unit_;
        element->include_time_ = false;
    }
    elements_.push_back(std::move(element));
    return true;
}

// The pattern starts at the time of its first relative element, in formula order. The other
// relative times are stored as distances from there; GenerateFormula adds the offset again.
void CStimulus::SetOffset() noexcept {
    const auto first = std::find_if(elements_.begin(), elements_.end(),
                                    [](const auto& element) { return element->Absolute() == 0; });
    pattern_offset_ = Time(first == elements_.end() ? 0 : (*first)->GetTime());
    if (pattern_offset_.value == 0) {
        return;
    }
    for (const auto& element : elements_) {
        if (element->Absolute() == 0) {
            element->time_ = Time(element->GetTime() - pattern_offset_.value);
        }
    }
}

// Returns when the pattern starts, nullopt if that is past the range of times.
std::optional<std::int64_t> CStimulus::GetStartTime() const noexcept {
    return corv::util::CheckedAdd(start_time_.GetTime(), pattern_offset_.GetTime());
}

// A negative period repeats like a positive one. The negation is done unsigned, since -2^63 has no
// positive counterpart.
std::uint64_t CStimulus::Period() const noexcept {
    const std::int64_t period = repeat_period_.GetTime();
    return period < 0 ? 0 - static_cast<std::uint64_t>(period) : static_cast<std::uint64_t>(period);
}

int CStimulus::GetValue(std::int64_t time, CString& value) const noexcept {
    if (custom_) {
        return custom_->GetValue(time, value);
    }
    if (counter_) {
        return counter_->GetValue(time, value);
    }
    const std::optional<std::int64_t> pattern_start = GetStartTime();
    if (elements_.empty() || !pattern_start || time < *pattern_start) {
        return 0;
    }
    // unsigned, since a negative start may be further back than 63 bits can express
    std::uint64_t in_pattern =
        static_cast<std::uint64_t>(time) - static_cast<std::uint64_t>(*pattern_start);
    if (const std::uint64_t period = Period(); period != 0) {
        in_pattern %= period;
    }
    constexpr auto kMax = static_cast<std::uint64_t>(corv::util::Int64Limits::max());
    const CSimpleStimulus* winner =
        index_->Prev(static_cast<std::int64_t>(std::min(in_pattern, kMax)), false);
    if (const CSimpleStimulus* absolute = index_->Prev(time, true)) {
        const auto since_relative =
            winner ? in_pattern - static_cast<std::uint64_t>(winner->GetTime()) : 0;
        const auto since_absolute =
            static_cast<std::uint64_t>(time) - static_cast<std::uint64_t>(absolute->GetTime());
        if (!winner || since_absolute <= since_relative) {
            winner = absolute;
        }
    }
    return winner && corv::platform::Done([&] { value = winner->value_; }) ? 1 : 0;
}

// Returns the first event of the repeated pattern at or after a time that is not before its start:
// the next element in this period or, if there is none, the first of the next period.
std::optional<std::int64_t> CStimulus::NextRelativeEvent(
    std::int64_t from, std::int64_t pattern_start) const noexcept {
    std::uint64_t in_pattern =
        static_cast<std::uint64_t>(from) - static_cast<std::uint64_t>(pattern_start);
    std::uint64_t periods_before = 0;
    const std::uint64_t period = Period();
    if (period != 0) {
        periods_before = in_pattern - in_pattern % period;
        in_pattern %= period;
    }
    constexpr auto kMax = static_cast<std::uint64_t>(corv::util::Int64Limits::max());
    const CSimpleStimulus* next =
        in_pattern > kMax ? nullptr : index_->Next(static_cast<std::int64_t>(in_pattern), false);
    if (!next && period != 0) {
        next = index_->Next(0, false);
        periods_before += period;  // may exceed 2^64; checked below
        if (periods_before < period) {
            return std::nullopt;
        }
    }
    if (!next) {
        return std::nullopt;
    }
    const std::uint64_t since_start = periods_before + static_cast<std::uint64_t>(next->GetTime());
    const std::uint64_t room = static_cast<std::uint64_t>(corv::util::Int64Limits::max()) -
                               static_cast<std::uint64_t>(pattern_start);
    if (since_start < periods_before || since_start > room) {
        return std::nullopt;
    }
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(pattern_start) + since_start);
}

std::int64_t CStimulus::GetNextEventTime(std::int64_t time) const noexcept {
    if (custom_) {
        return custom_->GetNextEventTime(time);
    }
    if (counter_) {
        return counter_->GetNextEventTime(time);
    }
    const std::optional<std::int64_t> pattern_start = GetStartTime();
    if (elements_.empty() || !pattern_start || time == corv::util::Int64Limits::max()) {
        return -1;
    }
    const std::int64_t from = std::max(time + 1, *pattern_start);
    const CSimpleStimulus* absolute = index_->Next(from, true);
    const std::optional<std::int64_t> relative = NextRelativeEvent(from, *pattern_start);
    if (absolute && (!relative || absolute->GetTime() < *relative)) {
        return absolute->GetTime();
    }
    return relative.value_or(-1);
}

void CStimulus::GenerateFormula(CString& out) noexcept {
    if (!corv::platform::Done([&] { out = CString(WriteFormula()); })) {
        out.Empty();
    }
}

std::string CStimulus::WriteFormula() {
    std::string out;
    if (custom_ || counter_) {
        return out;
    }
    for (const auto& element : elements_) {
        element->time_ = Time(element->GetTime());
        if (!out.empty()) {
            out += ", ";
        }
        if (element->include_time_) {
            const std::int64_t offset = element->Absolute() != 0 ? 0 : pattern_offset_.GetTime();
            corv::stimulus::AppendElement(out, element->value_.View(), element->Absolute() != 0,
                                          element->time_.value + offset, {});
        } else {
            out += element->value_.View();
        }
    }
    if (repeat_period_.GetTime() != 0) {
        out += " -r ";
        corv::util::AppendNumber(out, repeat_period_.value);
        out += corv::stimulus::WrittenUnit(repeat_period_);
    }
    return out;
}

const char* CStimulus::GetSignalTypeInfo() const noexcept {
    return custom_ ? custom_->GetSignalTypeInfo() : nullptr;
}
