#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files.h"

// What a reader had to repair, assume or leave out.
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

// Problems of one kind become one sentence with the place of the first and their number, so that
// any number of them takes constant memory.
class Notes {
public:
    // `detail` is a word of the file that the sentence is about.
    void Add(Problem problem, std::size_t offset, std::string_view detail = {});
    // Adds a sentence of its own. Only the first hundred are kept.
    void Say(std::size_t offset, std::string_view sentence);

    // Returns all sentences in the order of their places, each with line and column. Lines are
    // counted only here, since most files have nothing to report.
    std::vector<std::string> Sentences(const platform::FileContent& content) const;

private:
    struct Kind {
        std::uint64_t count = 0;
        std::size_t offset = 0;
        std::string detail;
    };
    struct Sentence {
        std::size_t offset;
        std::string text;
    };
    std::vector<Sentence> Sorted() const;

    std::array<Kind, static_cast<std::size_t>(Problem::kCount)> kinds_;
    std::vector<Sentence> said_;
    std::uint64_t unsaid_ = 0;
};

}  // namespace corv::vcd
