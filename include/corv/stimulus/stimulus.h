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

// A stimulus made from formula text: which value a signal has at a time, when it changes next, and
// the formula in normal form. All times are picoseconds; -1 stands for no time and no event.
//
//     CStimulus clock;
//     clock.Create("0 0, 1 10, 0 20 -r 40", 0);
//     clock.GetNextEventTime(20);   // 40
//
// A formula is a list of elements separated by commas; an element is a value and its time, which
// may be left out at the element's end and then is 0. A time is a number with an optional unit
// ("10", "1.5ns", "10 ns"); one behind "@" is a simulation time, any other counts from the start.
// "-r" and a time repeat the pattern with that period; a negative one counts as positive. A comma
// ends an element only directly after a word: one after a blank is skipped as the blank is, so that
// "x , 1 10" has x at 1. Of elements at equal times the first one counts. A formula with "/vesk"
// holds the compact notation of vesk.h behind that word; one with "\\counter" is a counter or a
// wire of a registered one, as counter.h tells; "/custom run.evt, top.clk" replays a signal of a
// recording (custom_stimulus.h; the text is turned to lower case first). corv::CheckFormula tells
// what is wrong with a formula.
//
// An ordinary stimulus owns its elements. One thread at a time may use it: questions asked of a
// const stimulus remember where the last one ended, or move its counter on.
class CORV_API CStimulus {
public:
    // Picoseconds throughout: the units (1, 1).
    CStimulus() noexcept;
    // The unit of times written without one and of the start time, and the unit the repeat period
    // is used in. Evaluation takes every time in picoseconds, so hosts pass 1 for the second.
    CStimulus(std::uint32_t default_unit, std::uint32_t repeat_target_unit) noexcept;
    CStimulus(const CStimulus&) = delete;
    CStimulus& operator=(const CStimulus&) = delete;
    virtual ~CStimulus();

    // Reads a formula; what the stimulus held before is dropped. `start`, in the default unit, is
    // when the stimulus begins. Gives 1, or 0 for a null or empty formula, an empty or unreadable
    // element, a negative time, a formula without elements, a notation text that can't be read, a
    // counter that can't be registered or is not there, a recording or recorded signal that is not
    // there, and when memory runs out. After 0 the elements read so far stay, unless there is no
    // memory to find them by.
    int Create(const char* formula, std::int64_t start) noexcept;

    // Back to an empty stimulus.
    void Destroy() noexcept;

    // The value at a time: 1 with the text written; 0, the text left alone, when there is none.
    int GetValue(std::int64_t time, CString& value) const noexcept;

    // The first event strictly after a time, -1 when there is none.
    std::int64_t GetNextEventTime(std::int64_t time) const noexcept;

    // Writes the formula in normal form: elements joined by ", ", times in whole picoseconds, the
    // repeat period in its own unit. Empty before a Create that returned 1, for a counter or a
    // recorded signal, and when memory runs out; after one that returned 0 it holds what was read.
    // Elements handed out by an iterator show their times in picoseconds from then on.
    void GenerateFormula(CString& out) noexcept;

    // Stops the repetition.
    void NoRepeat() noexcept { repeat_period_.value = 0; }
    // The repeat period, 0 without repetition.
    std::int64_t GetRepeatRate() const noexcept { return repeat_period_.GetTime(); }

    // Whether the stimulus replays a recorded signal; that part, owned by the stimulus, or null.
    bool IsCustom() const noexcept { return custom_ != nullptr; }
    CCustomStimulus* GetCustom() const noexcept { return custom_.get(); }
    // The type-description string of the replayed signal, null for any other stimulus.
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

    // The sorted times of the elements; null without any.
    std::unique_ptr<corv::stimulus::ElementIndex> index_;
};
