#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "stremo/byte_code.h"

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

// Problems of one kind become one sentence with the place of the first and their number, however
// many there are.
class Notes {
public:
    // `detail` is what the sentence is about, a word of the file.
    void Add(Problem problem, std::size_t offset, std::string_view detail = {});
    // A sentence of its own. Only the first hundred are kept.
    void Say(std::size_t offset, std::string_view sentence);

    // All sentences in the order of their places, each with line and column when it has a place.
    // `forget` is called with the parts of the file that were read for that.
    template <class Forget>
    std::vector<std::string> Sentences(recording::Bytes file, Forget forget) const;

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

// The place of a byte, found by reading on from the one before.
struct Place {
    std::uint64_t line = 1;
    std::size_t line_begin = 0;
    std::size_t offset = 0;

    void MoveTo(recording::Bytes file, std::size_t to) noexcept;
};

template <class Forget>
std::vector<std::string> Notes::Sentences(recording::Bytes file, Forget forget) const {
    constexpr std::size_t kStep = std::size_t{1} << 24;
    std::vector<std::string> sentences;
    Place place;
    for (const Sentence& sentence : Sorted()) {
        while (place.offset < sentence.offset) {
            const std::size_t from = place.offset;
            place.MoveTo(file, sentence.offset - from > kStep ? from + kStep : sentence.offset);
            forget(file.subspan(from, place.offset - from));
        }
        sentences.push_back("line " + std::to_string(place.line) + ", column " +
                            std::to_string(sentence.offset - place.line_begin + 1) + ": " +
                            sentence.text);
    }
    if (unsaid_ > 0) {
        sentences.push_back("and " + std::to_string(unsaid_) + " more remarks of that kind");
    }
    return sentences;
}

}  // namespace corv::vcd
