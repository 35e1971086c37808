#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "corv/platform/cstring.h"
#include "corv/platform/export.h"
#include "corv/stimulus/simple_stimulus.h"
#include "corv/stimulus/time_unit.h"

class CCounterRef;
class CCustomStimulus;
namespace corv::stimulus {
class ElementIndex;
struct FormulaItem;
}  // namespace corv::stimulus

// A stimulus made from the text of a formula. It answers which value a signal has at a time and
// when it changes next, and writes the formula in normal form. All times are picoseconds; -1 means
// no time and no event.
//
//     CStimulus clock;
//     clock.Create("0 0, 1 10, 0 20 -r 40", 0);
//     clock.GetNextEventTime(20);   // 40
//
// A formula is a list of elements separated by commas; an element is a value and its time. The time
// may be left out at the end of the element and is then 0. A time is a number with an optional unit
// ("10", "1.5ns", "10 ns"); after "@" it is a simulation time, otherwise it counts from the start.
// "-r" and a time repeat the pattern with that period; a negative one counts as positive. A comma
// ends an element only directly after a word: one after a blank is skipped as the blank is, so that
// "x , 1 10" has x at 1. Of elements at equal times the first one counts. A formula with "/vesk"
// has the compact notation of vesk.h after that word; one with "\\counter" is a counter or a wire
// of a registered one (counter.h); "/custom run.evt, top.clk" replays a signal of a recording
// (custom_stimulus.h; the text is converted to lower case first). corv::CheckFormula reports what
// is wrong with a formula; docs/formats/formulas.md has the grammar.
//
// An ordinary stimulus owns its elements. One thread at a time may use it: questions asked of a
// const stimulus remember where the last one ended, or move its counter on.
class CORV_API CStimulus {
public:
    // Picoseconds throughout: the units (1, 1).
    CStimulus() noexcept;
    // Sets the unit of the start time and of times written without a unit, and the unit that the
    // repeat period is converted to. Evaluation uses picoseconds throughout, so hosts pass 1 for
    // the second.
    CStimulus(std::uint32_t default_unit, std::uint32_t repeat_target_unit) noexcept;
    CStimulus(const CStimulus&) = delete;
    CStimulus& operator=(const CStimulus&) = delete;
    virtual ~CStimulus();

    // Reads a formula; the previous contents are dropped. `start`, in the default unit, is when the
    // stimulus begins. Returns 1 on success. Returns 0 for a null or empty formula, an empty or
    // unreadable element, a negative time, a formula without elements, a notation that cannot be
    // read, a counter that cannot be registered or does not exist, a recording or recorded signal
    // that does not exist, and if out of memory. After a failure the elements read so far stay,
    // unless there is no memory to index them.
    int Create(const char* formula, std::int64_t start) noexcept;

    // Makes the stimulus empty.
    void Destroy() noexcept;

    // Stores the value at a time and returns 1; returns 0 with the text unchanged if there is none.
    int GetValue(std::int64_t time, CString& value) const noexcept;

    // Returns the first event strictly after a time, -1 if there is none.
    std::int64_t GetNextEventTime(std::int64_t time) const noexcept;

    // Writes the formula in normal form: elements joined by ", ", times in whole picoseconds, the
    // repeat period in its own unit. After a Create that failed it writes what was read. The text
    // is empty before the first Create, for a counter or a recorded signal, and if out of memory.
    // Elements returned by an iterator show their times in picoseconds from then on.
    void GenerateFormula(CString& out) noexcept;

    // Stops the repetition.
    void NoRepeat() noexcept { repeat_period_.value = 0; }
    // Returns the repeat period, 0 without repetition.
    std::int64_t GetRepeatRate() const noexcept { return repeat_period_.GetTime(); }

    // Return whether the stimulus replays a recorded signal, and the part that does so, which the
    // stimulus owns, or null.
    bool IsCustom() const noexcept { return custom_ != nullptr; }
    CCustomStimulus* GetCustom() const noexcept { return custom_.get(); }
    // Returns the type-description string of the replayed signal, null for any other stimulus.
    const char* GetSignalTypeInfo() const noexcept;

private:
    friend class CStimIterator;

    std::optional<std::int64_t> GetStartTime() const noexcept;
    bool ReadFormula(std::string_view formula, std::int64_t start);
    bool ReadElements(std::string_view formula);
    bool CreateCustom(std::string_view formula, std::int64_t start);
    bool CreateCounter(std::string_view formula, std::int64_t start);
    void SetParameter(const corv::stimulus::FormulaItem& item) noexcept;
    bool SetValue(const corv::stimulus::FormulaItem& item);
    void SetOffset() noexcept;
    std::string WriteFormula();
    std::optional<std::int64_t> NextRelativeEvent(std::int64_t from,
                                                  std::int64_t pattern_start) const noexcept;
    std::uint64_t Period() const noexcept;

    bool BuildIndex() noexcept;

    std::vector<std::unique_ptr<CSimpleStimulus>> elements_;
    TTimeUnit<std::int64_t> start_time_;
    TTimeUnit<std::int64_t> repeat_period_;
    TTimeUnit<std::int64_t> pattern_offset_;
    std::unique_ptr<CCustomStimulus> custom_;
    std::unique_ptr<CCounterRef> counter_;
    std::uint32_t repeat_target_unit_;
    std::uint32_t default_unit_;

    // The sorted times of the elements; null if there are none.
    std::unique_ptr<corv::stimulus::ElementIndex> index_;
};
