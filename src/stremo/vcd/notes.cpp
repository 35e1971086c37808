#include "stremo/vcd/notes.h"

#include <algorithm>

namespace corv::vcd {
namespace {

using Byte = unsigned char;

// The sentence for each problem; % is replaced by the detail.
constexpr const char* kTexts[] = {
    "the file ends in the middle of a word; what it belongs to is left out",
    "the file ends among its declarations; signals may be missing and there are no values",
    "there is no timescale; times are taken as nanoseconds",
    "the timescale % can't be read; times are taken as nanoseconds",
    "the timescale % is finer than a picosecond; times are rounded down",
    "$enddefinitions is missing",
    "$end is missing",
    "a block of values has no $end",
    "$upscope stands outside all scopes",
    "the declaration of % can't be read; it is left out",
    "% is too wide to be shown; it is left out",
    "the name % is too long; it is left out",
    "% shares its code with a variable of another width or type; each takes the values in its way",
    "% is an integer of more than 32 bits; it is shown as a vector",
    "% makes no sense here; it is left out",
    "the code % is not declared; its values are left out",
    "the value % has no code; it is left out",
    "the value % has more digits than its variable; the right-hand ones are taken",
    "the value % does not fit the type of its variable; it is left out",
    "the value % passes the range of real numbers; the largest one is taken",
    "the text % is longer than can be shown; its end is left out",
    "the time goes back to %; what follows stays at the latest time until it is passed",
    "the time % passes the range of times; the last one is taken",
};
static_assert(std::size(kTexts) == static_cast<std::size_t>(Problem::kCount));

constexpr std::size_t kMostSaid = 100;

// Returns a word in printable form, since a damaged file may contain anything.
std::string Shown(std::string_view word) {
    constexpr std::size_t kMost = 60;
    std::string shown(word.substr(0, kMost));
    for (char& c : shown) {
        c = c >= ' ' && c != '\x7F' ? c : '.';
    }
    return word.size() > kMost ? shown + "..." : shown;
}

// The place of a byte, found by reading on from the previous one.
struct Place {
    std::uint64_t line = 1;
    std::size_t line_begin = 0;
    std::size_t offset = 0;
};

void MoveTo(const platform::FileContent& content, std::size_t to, Place& place) {
    constexpr std::size_t kPart = std::size_t{1} << 22;
    while (place.offset < to) {
        const platform::Bytes part =
            content.BringPart(place.offset, std::min(kPart, to - place.offset));
        const auto newlines = std::count(part.begin(), part.end(), static_cast<Byte>('\n'));
        if (newlines > 0) {
            const auto last = std::find(part.rbegin(), part.rend(), static_cast<Byte>('\n'));
            place.line += static_cast<std::uint64_t>(newlines);
            place.line_begin = place.offset + static_cast<std::size_t>(last.base() - part.begin());
        }
        place.offset += part.size();
        content.Forget(part);
    }
}

}  // namespace

void Notes::Add(Problem problem, std::size_t offset, std::string_view detail) {
    Kind& kind = kinds_[static_cast<std::size_t>(problem)];
    if (kind.count == 0) {
        kind.detail = Shown(detail);
        kind.offset = offset;
    }
    ++kind.count;
}

void Notes::Say(std::size_t offset, std::string_view sentence) {
    if (said_.size() < kMostSaid) {
        said_.push_back({offset, Shown(sentence)});
    } else {
        ++unsaid_;
    }
}

std::vector<Notes::Sentence> Notes::Sorted() const {
    std::vector<Sentence> sentences = said_;
    for (std::size_t i = 0; i < kinds_.size(); ++i) {
        const Kind& kind = kinds_[i];
        if (kind.count == 0) {
            continue;
        }
        std::string text = kTexts[i];
        if (const std::size_t at = text.find('%'); at != std::string::npos) {
            text.replace(at, 1, "'" + kind.detail + "'");
        }
        if (kind.count > 1) {
            text += " (" + std::to_string(kind.count) + " times)";
        }
        sentences.push_back({kind.offset, std::move(text)});
    }
    std::stable_sort(sentences.begin(), sentences.end(),
                     [](const Sentence& a, const Sentence& b) { return a.offset < b.offset; });
    return sentences;
}

std::vector<std::string> Notes::Sentences(const platform::FileContent& content) const {
    std::vector<std::string> sentences;
    Place place;
    for (const Sentence& sentence : Sorted()) {
        MoveTo(content, sentence.offset, place);
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
