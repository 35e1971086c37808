#pragma once

#include <string>
#include <vector>

#include "platform/files.h"
#include "stremo/notes.h"

// What a reader had to repair, guess or leave out.
namespace corv::vcd {

enum class Problem : unsigned char {
    kCut,
    kCutHeader,
    kNoTimeScale,
    kBadTimeScale,
    kRounded,
    kNoHeaderEnd,
    kMissingEnd,
    kOpenBlock,
    kNoScope,
    kBadVariable,
    kTooWide,
    kLongName,
    kOtherShape,
    kWideInteger,
    kNonsense,
    kUndeclared,
    kNoCode,
    kTooManyDigits,
    kWrongKind,
    kInfinite,
    kLongString,
    kTimeBack,
    kLateTime,
    kCount
};

// What is said of a problem; % stands for a word of the file.
const char* PatternOf(Problem problem) noexcept;

// All sentences of the notes, each with line and column.
std::vector<std::string> Sentences(const recording::Notes& notes,
                                   const platform::FileContent& content);

}  // namespace corv::vcd
