#include "stremo/vcd/problems.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>

namespace corv::vcd {
namespace {

using Byte = unsigned char;

constexpr const char* kTexts[] = {
    "the file ends in the middle of a word; what it belongs to is left out",
    "the file ends among its declarations; signals may be missing and there are no values",
    "there is no timescale; times are taken as nanoseconds",
    "the timescale % cannot be read; times are taken as nanoseconds",
    "the timescale % is finer than a picosecond; times are rounded down",
    "$enddefinitions is missing",
    "$end is missing",
    "a block of values has no $end",
    "$upscope is outside all scopes",
    "the declaration of % cannot be read; it is left out",
    "% is too wide to be shown; it is left out",
    "the name % is too long; it is left out",
    "% shares its code with a variable of another width or type; each reads values its own way",
    "% is an integer of more than 32 bits; it is shown as a vector",
    "% makes no sense here; it is left out",
    "the code % is not declared; its values are left out",
    "the value % has no code; it is left out",
    "the value % has more digits than its variable; the right-hand ones are taken",
    "the value % does not fit the type of its variable; it is left out",
    "the value % exceeds the range of real numbers; the largest one is taken",
    "the text % is longer than can be shown; its end is left out",
    "the time goes back to %; what follows stays at the latest time until it is passed",
    "the time % exceeds the range of times; the last one is taken",
};
static_assert(std::size(kTexts) == static_cast<std::size_t>(Problem::kCount));

// The place of a byte, found by reading on from the previous one.
struct Place {
    std::uint64_t line = 1;
    std::size_t line_begin = 0;
    std::size_t offset = 0;
};

void MoveTo(const platform::FileContent& content, std::size_t to, Place& place) {
    // The lines before a problem are counted in parts, which are released again: a file can be
    // larger than the memory.
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

const char* PatternOf(Problem problem) noexcept {
    return kTexts[static_cast<std::size_t>(problem)];
}

std::vector<std::string> Sentences(const recording::Notes& notes,
                                   const platform::FileContent& content) {
    return notes.Sentences([&, place = Place()](std::size_t offset) mutable {
        MoveTo(content, offset, place);
        return "line " + std::to_string(place.line) + ", column " +
               std::to_string(offset - place.line_begin + 1);
    });
}

}  // namespace corv::vcd
