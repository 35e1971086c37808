#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "corv/stimulus/time_unit.h"

// The grammar of ordinary formulas with its reader and writer. Evaluation and diagnostics use the
// same reader.
//
//     formula   = element { "," element }
//     element   = { value [ time ] | ( "-r" | "-repeat" ) [ time ] }
//     time      = [ "@" ] number [ [ blanks ] unit ]
//
// Words are separated by blanks (space, newline, tab). A word that begins with "(", '"' or "'" runs
// through its match, or without one to the end of the formula; parentheses nest. The word after a
// value is always its time. An element ends at a comma directly after a word, or at the end of the
// text; a comma after a blank is skipped as the blank is. Consecutive commas count as one.
namespace corv::stimulus {

// One value with its time, or a repeat parameter with its period, as views of the formula.
struct FormulaItem {
    bool is_repeat = false;
    std::string_view value;      // the value, or the parameter's name; never empty
    std::string_view time;       // with "@" if absolute; empty if none was written
    std::string_view unit;       // a unit written as a word of its own, else empty
    bool comma_skipped = false;  // a comma after a blank is between value and time or unit
    bool ends_element = false;
};

class FormulaReader {
public:
    explicit FormulaReader(std::string_view formula) noexcept : text_(formula) {}

    // Returns whether the formula begins with a comma, so that its first element is empty.
    bool StartsWithComma() const noexcept { return text_.starts_with(','); }

    // Returns the next value or parameter, nullopt at the end of the formula.
    std::optional<FormulaItem> Next() noexcept;

private:
    struct Word {
        std::string_view text;  // empty at the end of the formula
        std::size_t end;        // after the word
        bool comma_skipped;     // before the word
    };

    Word ReadWord(std::size_t from) const noexcept;
    // Returns the next word of the same element, empty if the element has ended at `from`.
    Word ReadSameElement(std::size_t from) const noexcept;
    bool ElementEndsAt(std::size_t at) const noexcept;

    std::string_view text_;
    std::size_t at_ = 0;
};

// Returns whether a word begins with a bracket or quote that is never closed.
bool IsUnmatched(std::string_view word) noexcept;

// Returns whether a word is the repeat parameter, in any case.
bool IsParameter(std::string_view word) noexcept;

// The time of an item in its own unit. An unreadable time is 0 in the default unit.
struct FormulaTime {
    TTimeUnit<std::int64_t> time;
    bool absolute = false;
    bool readable = true;
    bool fraction_cut = false;  // digits finer than a picosecond were dropped
};
FormulaTime ReadFormulaTime(const FormulaItem& item, std::uint32_t default_unit) noexcept;

// Appends a value with its time, or a value alone: "1 @10ns".
void AppendElement(std::string& out, std::string_view value, bool absolute, std::int64_t number,
                   std::string_view unit);

// Returns the unit's name if a time has to be written with it, which is when it is not in its
// target unit.
std::string_view WrittenUnit(const TTimeUnit<std::int64_t>& time) noexcept;

// Returns the kind of a formula, by the first marker found in this order: custom, counter,
// notation.
enum class FormulaKind { Ordinary, Custom, Counter, Notation };
FormulaKind FindFormulaKind(std::string_view formula) noexcept;

// Returns the position of the first "/vesk", npos without one.
std::size_t FindNotation(std::string_view formula) noexcept;

// Returns the notation text after the first "/vesk" and blanks.
std::string_view NotationText(std::string_view formula) noexcept;

}  // namespace corv::stimulus
