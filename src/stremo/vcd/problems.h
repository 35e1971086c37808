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

// Returns all sentences of the notes, each with line and column. Lines are counted only here, since
// most files have nothing to report.
std::vector<std::string> Sentences(const recording::Notes& notes,
                                   const platform::FileContent& content);

}  // namespace corv::vcd
