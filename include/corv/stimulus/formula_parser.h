#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "corv/platform/cstring.h"
#include "corv/platform/cstring_array.h"
#include "corv/platform/export.h"

// Splits the formula of a vector into one formula per element, element 0 first. `width` is the
// number of elements, at most kMaxVectorWidth. A `split_mode` of 0 splits values into words,
// "(red,green) 0" into red and green; any other splits them into characters, "01XZ" into four. In
// both modes numbers such as 16#F become the digits of a bit string of the given width. Each Run
// returns 1 on success and 0 on failure. For a null or empty formula it returns 0 with the list
// unchanged; it also returns 0 if out of memory.

inline constexpr int kMaxVectorWidth = 1'048'576;

// Splits a formula of any kind.
class CORV_API CFormulaParser {
public:
    // Counters are split as by CCounterFormulaParser. "/custom run.evt, bus" becomes "/custom
    // run.evt,bus(1)" and so on, one formula per member of the recorded signal, whatever the width;
    // Run returns 0 if the signal cannot be found or has no members. Any other formula is split as
    // by CSimpleFormulaParser.
    int Run(const char* formula, CStringArray& list, int width, int split_mode) noexcept;
};

// Splits formulas of values and times: `"01XZ" 0, "1X10" 10 -r 20` of width 4, split into
// characters, becomes "'0' 0,'1' 10 -r 20", "'1' 0,'X' 10 -r 20" and so on. Characters are quoted
// if the value was.
class CORV_API CSimpleFormulaParser {
public:
    // Clears the list and fills it with `width` formulas. Returns 0 with the list unchanged if a
    // stimulus refuses the formula or if the formulas would fill more than 1 GiB. If a value is
    // neither a number nor, in characters, exactly of the width, it returns 0, and the list
    // contains what was split before that value.
    int Run(const char* formula, CStringArray& list, int width, int split_mode) noexcept;

private:
    bool Cut(std::string_view text, CStringArray& list) const;
    bool splitToken(std::string_view token, std::vector<std::string>& pieces,
                    std::size_t& room) const;

    int width_ = 0;
    int split_mode_ = 0;
};

// Registers a counter and makes a reference text for each element.
class CORV_API CCounterFormulaParser {
public:
    // Appends `width` references to the list. For a formula that RegisterCounter refuses it returns
    // 0, with the list unchanged and no counter registered. A width below 1 appends nothing.
    int Run(const char* formula, CStringArray& list, int width, int split_mode) noexcept;
};
