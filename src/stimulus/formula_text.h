#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "corv/stimulus/time_unit.h"

// The grammar of ordinary formulas, its reader and its writer. Evaluation and diagnostics both
// stand on the reader.
//
//     formula   = element { "," element }
//     element   = { value [ time ] | ( "-r" | "-repeat" ) [ time ] }
//     time      = [ "@" ] number [ [ blanks ] unit ]
//
// Words are separated by blanks (space, newline, tab). A word that begins with "(", '"' or "'" runs
// through its match, or without one to the end of the formula; parentheses nest. The word behind a
// value is always its time. An element ends where a comma stands directly behind a word, or at the
// end of the text; a comma behind a blank is skipped like a blank. Commas that directly follow each
// other count as one.
namespace corv::stimulus {

// One value with its time, or a repeat parameter with its period, as views of the formula.
struct FormulaItem {
    bool is_repeat = false;
    std::string_view value;      // the value, or the parameter's name; never empty
    std::string_view time;       // with "@" when absolute; empty when none was written
    std::string_view unit;       // a unit written as a word of its own, else empty
    bool comma_skipped = false;  // a comma behind a blank stands between value and time or unit
    bool ends_element = false;
};

class FormulaReader {
public:
    explicit FormulaReader(std::string_view formula) noexcept : text_(formula) {}

    // Whether the formula begins with a comma: its first element is empty.
    bool StartsWithComma() const noexcept { return text_.starts_with(','); }

    // The next value or parameter; nothing at the end of the formula.
    std::optional<FormulaItem> Next() noexcept;

private:
    struct Word {
        std::string_view text;  // empty when the formula is used up
        std::size_t end;        // behind the word
        bool comma_skipped;     // before the word
    };

    Word ReadWord(std::size_t from) const noexcept;
    // The next word of the same element, empty when the element has ended at `from`.
    Word ReadSameElement(std::size_t from) const noexcept;
    bool ElementEndsAt(std::size_t at) const noexcept;

    std::string_view text_;
    std::size_t at_ = 0;
};

// Whether a word begins with a bracket or quote that is never closed.
bool IsUnmatched(std::string_view word) noexcept;

// Whether a word is the repeat parameter, in any case.
bool IsParameter(std::string_view word) noexcept;

// The time of an item in the unit it is in. An unreadable time is 0 in the default unit.
struct FormulaTime {
    TTimeUnit<std::int64_t> time;
    bool absolute = false;
    bool readable = true;
    bool fraction_cut = false;  // digits finer than a picosecond were left out
};
FormulaTime ReadFormulaTime(const FormulaItem& item, std::uint32_t default_unit) noexcept;

// Appends a value with its time, or a value alone: "1 @10ns".
void AppendElement(std::string& out, std::string_view value, bool absolute, std::int64_t number,
                   std::string_view unit);

// The unit's name when a time has to be written with it: when it is not in its target unit.
std::string_view WrittenUnit(const TTimeUnit<std::int64_t>& time) noexcept;

// What kind of formula a text is, by the first of its markers in this order.
enum class FormulaKind { Ordinary, Custom, Counter, Notation };
FormulaKind FindFormulaKind(std::string_view formula) noexcept;

// Where the first "/vesk" stands; npos without one.
std::size_t FindNotation(std::string_view formula) noexcept;

// The notation text after the first "/vesk" and blanks.
std::string_view NotationText(std::string_view formula) noexcept;

}  // namespace corv::stimulus
