#include "typeinfo/vhdl_words.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <numeric>

namespace corv::typeinfo {
namespace {

// The reserved words of VHDL-2008, sorted.
constexpr std::array<std::string_view, 115> kReservedWords{"abs",
                                                           "access",
                                                           "after",
                                                           "alias",
                                                           "all",
                                                           "and",
                                                           "architecture",
                                                           "array",
                                                           "assert",
                                                           "assume",
                                                           "assume_guarantee",
                                                           "attribute",
                                                           "begin",
                                                           "block",
                                                           "body",
                                                           "buffer",
                                                           "bus",
                                                           "case",
                                                           "component",
                                                           "configuration",
                                                           "constant",
                                                           "context",
                                                           "cover",
                                                           "default",
                                                           "disconnect",
                                                           "downto",
                                                           "else",
                                                           "elsif",
                                                           "end",
                                                           "entity",
                                                           "exit",
                                                           "fairness",
                                                           "file",
                                                           "for",
                                                           "force",
                                                           "function",
                                                           "generate",
                                                           "generic",
                                                           "group",
                                                           "guarded",
                                                           "if",
                                                           "impure",
                                                           "in",
                                                           "inertial",
                                                           "inout",
                                                           "is",
                                                           "label",
                                                           "library",
                                                           "linkage",
                                                           "literal",
                                                           "loop",
                                                           "map",
                                                           "mod",
                                                           "nand",
                                                           "new",
                                                           "next",
                                                           "nor",
                                                           "not",
                                                           "null",
                                                           "of",
                                                           "on",
                                                           "open",
                                                           "or",
                                                           "others",
                                                           "out",
                                                           "package",
                                                           "parameter",
                                                           "port",
                                                           "postponed",
                                                           "procedure",
                                                           "process",
                                                           "property",
                                                           "protected",
                                                           "pure",
                                                           "range",
                                                           "record",
                                                           "register",
                                                           "reject",
                                                           "release",
                                                           "rem",
                                                           "report",
                                                           "restrict",
                                                           "restrict_guarantee",
                                                           "return",
                                                           "rol",
                                                           "ror",
                                                           "select",
                                                           "sequence",
                                                           "severity",
                                                           "shared",
                                                           "signal",
                                                           "sla",
                                                           "sll",
                                                           "sra",
                                                           "srl",
                                                           "strong",
                                                           "subtype",
                                                           "then",
                                                           "to",
                                                           "transport",
                                                           "type",
                                                           "unaffected",
                                                           "units",
                                                           "until",
                                                           "use",
                                                           "variable",
                                                           "vmode",
                                                           "vprop",
                                                           "vunit",
                                                           "wait",
                                                           "when",
                                                           "while",
                                                           "with",
                                                           "xnor",
                                                           "xor"};

// Letters beyond the 7-bit alphabet are those of whatever encoding the text has.
bool IsNameStart(char c) noexcept {
    return platform::IsLetter(c) || static_cast<unsigned char>(c) >= 0x80;
}
bool IsNamePart(char c) noexcept {
    return IsNameStart(c) || platform::IsDigit(c) || c == '_';
}

// How many bytes of a no-break space stand first: one in Latin-1, two in UTF-8. Its last byte may
// also end another character of UTF-8; that is told by the byte before it.
std::size_t NoBreakSpace(std::string_view text, std::size_t at = 0) noexcept {
    const bool follows = at > 0 && static_cast<unsigned char>(text[at - 1]) >= 0x80;
    return text.substr(at).starts_with("\xC2\xA0")           ? 2
           : text.substr(at).starts_with('\xA0') && !follows ? 1
                                                             : 0;
}

std::size_t NameLength(std::string_view text) noexcept {
    std::size_t i = 0;
    while (i < text.size() && IsNamePart(text[i]) && NoBreakSpace(text, i) == 0) {
        ++i;
    }
    return i;
}

// Letters and all that may stand in a number, so that a misspelt one stays one word.
std::size_t NumberLength(std::string_view text) noexcept {
    bool based = false;
    std::size_t i = 1;
    for (; i < text.size(); ++i) {
        const bool before_digit = i + 1 < text.size() && platform::IsDigit(text[i + 1]);
        const bool is_sign = (text[i] == '+' || text[i] == '-') && !based && before_digit &&
                             platform::Lower(text[i - 1]) == 'e';
        based = based || text[i] == '#';
        if (!IsNamePart(text[i]) && text[i] != '#' && !(text[i] == '.' && before_digit) &&
            !is_sign) {
            break;
        }
    }
    return i;
}

constexpr bool EndsLine(char c) noexcept {
    return c >= '\n' && c <= '\r';
}

// Through the closing backslash, a doubled one closes nothing; 0 when the line ends before it.
std::size_t ExtendedLength(std::string_view text) noexcept {
    for (std::size_t i = 1; i < text.size() && !EndsLine(text[i]); ++i) {
        if (text[i] != '\\') {
            continue;
        }
        if (text.substr(i + 1, 1) != "\\") {
            return i + 1;
        }
        ++i;
    }
    return 0;
}

// How much of the text is blanks and comments, up to a comment without its end.
std::size_t BlankLength(std::string_view text) noexcept {
    std::size_t at = 0;
    while (at < text.size()) {
        const std::string_view rest = text.substr(at);
        if (const std::size_t blank = platform::IsSpace(rest[0]) ? 1 : NoBreakSpace(rest)) {
            at += blank;
        } else if (rest.starts_with("--")) {
            at += std::min(rest.find_first_of("\n\v\f\r"), rest.size());
        } else if (rest.starts_with("/*") && rest.find("*/", 2) != std::string_view::npos) {
            at += rest.find("*/", 2) + 2;
        } else {
            break;
        }
    }
    return at;
}

Word FirstWord(std::string_view text) noexcept {
    if (text.empty()) {
        return {WordKind::End, text};
    }
    if (IsNameStart(text[0])) {
        return {WordKind::Name, text.substr(0, NameLength(text))};
    }
    if (platform::IsDigit(text[0])) {
        return {WordKind::Number, text.substr(0, NumberLength(text))};
    }
    if (text[0] == '\\') {
        const std::size_t length = ExtendedLength(text);
        return length == 0 ? Word{WordKind::Unclosed, text.substr(0, 1)}
                           : Word{WordKind::Extended, text.substr(0, length)};
    }
    if (text.starts_with("/*")) {
        return {WordKind::Unclosed, text.substr(0, 2)};
    }
    if (text[0] == '\'' && text.size() > 2 && text[2] == '\'' && !EndsLine(text[1])) {
        return {WordKind::Character, text.substr(0, 3)};
    }
    return {WordKind::Symbol, text.substr(0, text.starts_with("<>") ? 2 : 1)};
}

}  // namespace

Word VhdlWords::Take() noexcept {
    const Word taken = next_;
    next_ = Read();
    return taken;
}

Word VhdlWords::Read() noexcept {
    rest_.remove_prefix(BlankLength(rest_));
    const Word word = FirstWord(rest_);
    rest_.remove_prefix(word.text.size());
    return word;
}

bool IsReserved(std::string_view name) noexcept {
    return std::any_of(kReservedWords.begin(), kReservedWords.end(),
                       [&](std::string_view word) { return platform::EqualNoCase(word, name); });
}

bool HasWrongUnderscore(std::string_view name) noexcept {
    return name.ends_with('_') || name.find("__") != std::string_view::npos;
}

bool IsIdentifier(const Word& word) noexcept {
    if (word.kind != WordKind::Name) {
        return word.kind == WordKind::Extended && word.text.find(' ') == std::string_view::npos;
    }
    return !IsReserved(word.text) && !HasWrongUnderscore(word.text);
}

bool IsIdentifier(std::string_view text) noexcept {
    const VhdlWords words(text);
    return words.Next().text.size() == text.size() && IsIdentifier(words.Next());
}

const std::string_view* FindRepeated(const std::vector<std::string_view>& names) {
    const auto fold = [](std::string_view name, char c) {
        return name[0] == '\\' || name[0] == '\'' ? c : platform::Lower(c);
    };
    const auto before = [&](std::string_view a, std::string_view b) {
        return std::lexicographical_compare(
            a.begin(), a.end(), b.begin(), b.end(),
            [&](char x, char y) { return fold(a, x) < fold(b, y); });
    };
    // Sorting the places instead of comparing all pairs keeps this fast for enumerations of
    // thousands of literals.
    std::vector<std::uint32_t> order(names.size());
    std::iota(order.begin(), order.end(), 0U);
    std::sort(order.begin(), order.end(), [&](std::uint32_t a, std::uint32_t b) {
        return before(names[a], names[b]) || (!before(names[b], names[a]) && a < b);
    });
    const std::string_view* found = nullptr;
    for (std::size_t i = 1; i < order.size(); ++i) {
        const std::string_view* const name = &names[order[i]];
        if (!before(names[order[i - 1]], *name) && (!found || name < found)) {
            found = name;
        }
    }
    return found;
}

}  // namespace corv::typeinfo
