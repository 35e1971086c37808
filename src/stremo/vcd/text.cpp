#include "stremo/vcd/text.h"

#include <algorithm>
#include <iterator>

namespace corv::vcd {
namespace {

constexpr Command kCommands[] = {
    {"$attrbegin", true, false},      {"$attrend", true, false},     {"$comment", false, false},
    {"$date", true, false},           {"$dumpall", false, true},     {"$dumpoff", false, true},
    {"$dumpon", false, true},         {"$dumpports", false, true},   {"$dumpportsall", false, true},
    {"$dumpportsoff", false, true},   {"$dumpportson", false, true}, {"$dumpvars", false, true},
    {"$enddefinitions", true, false}, {"$scope", true, false},       {"$timescale", true, false},
    {"$upscope", true, false},        {"$var", true, false},         {"$vcdclose", false, false},
    {"$version", true, false},
};

// Returns whether there are only blanks between a word and the beginning of its line, which is not
// before `from`.
bool BeginsLine(const Byte* word, const Byte* from) noexcept {
    while (word != from && (word[-1] == ' ' || word[-1] == '\t')) {
        --word;
    }
    return word != from && word[-1] == '\n';
}

}  // namespace

const Command* FindCommand(std::string_view word) noexcept {
    const Command* const found = std::find_if(std::begin(kCommands), std::end(kCommands),
                                              [&](const Command& c) { return c.word == word; });
    return found != std::end(kCommands) ? found : nullptr;
}

CommandText ReadToEnd(const Byte*& at, const Byte* end) noexcept {
    const Byte* const from = at;
    const Byte* const begin = SkipBlanks(at, end);
    const Byte* text_end = begin;
    for (;;) {
        const Byte* const word_begin = SkipBlanks(at, end);
        at = word_begin;
        const std::string_view word = NextWord(at, end);
        if (word.empty()) {
            return {Text(begin, text_end), false, false};
        }
        if (word == "$end") {
            return {Text(begin, text_end), true, true};
        }
        if ((IsTimeWord(word) || FindCommand(word) != nullptr) && BeginsLine(word_begin, from)) {
            at = word_begin;
            return {Text(begin, text_end), false, true};
        }
        text_end = at;
    }
}

const Byte* WholeWordsEnd(Bytes last) noexcept {
    const Byte* const begin = last.data();
    const Byte* const end = begin + last.size();
    const Byte* word = end;
    while (word != begin && !IsBlank(word[-1])) {
        --word;
    }
    return Text(word, end) == "$end" ? end : word;
}

}  // namespace corv::vcd
