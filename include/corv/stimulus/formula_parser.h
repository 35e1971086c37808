#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "corv/platform/cstring.h"
#include "corv/platform/cstring_array.h"
#include "corv/platform/export.h"

// Formulas of a vector cut into one formula per element, element 0 first. `width` is the number of
// elements, at most kMaxVectorWidth. `split_mode` 0 cuts values into words, "(red,green) 0" into
// red and green; any other cuts them into characters, "01XZ" into four. Numbers such as 16#F become
// the digits of a bit string of the width in both. Each Run gives 1 on success and 0 on failure; 0
// for a null or empty formula, with the list unchanged, and when memory runs out.

inline constexpr int kMaxVectorWidth = 1'048'576;

// Cuts a formula of any kind.
class CORV_API CFormulaParser {
public:
    // As CCounterFormulaParser for counters; "/custom run.evt, bus" gives "/custom run.evt,bus(1)"
    // and so on for the members of the recorded signal, whatever the width, and 0 when it can't be
    // found or has no members; any other formula as CSimpleFormulaParser.
    int Run(const char* formula, CStringArray& list, int width, int split_mode) noexcept;
};

// Cuts formulas of values and times: `"01XZ" 0, "1X10" 10 -r 20` of width 4 and in characters gives
// "'0' 0,'1' 10 -r 20", "'1' 0,'X' 10 -r 20" and so on; characters are quoted where the value was.
class CORV_API CSimpleFormulaParser {
public:
    // The list is emptied and filled with `width` formulas. 0 with the list unchanged when a
    // stimulus refuses the formula, or the formulas would fill more than 1 GiB; 0 with what was cut
    // before it for a value that is neither a number nor, in characters, of exactly the width.
    int Run(const char* formula, CStringArray& list, int width, int split_mode) noexcept;

private:
    bool Cut(std::string_view text, CStringArray& list) const;
    bool splitToken(std::string_view token, std::vector<std::string>& pieces,
                    std::size_t& room) const;

    int width_ = 0;
    int split_mode_ = 0;
};

// Registers a counter and gives each element its reference text.
class CORV_API CCounterFormulaParser {
public:
    // Appends `width` references to the list; 0 with the list unchanged and no counter registered
    // for a formula that RegisterCounter refuses. A width below 1 appends nothing.
    int Run(const char* formula, CStringArray& list, int width, int split_mode) noexcept;
};
