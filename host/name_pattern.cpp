// Patterns are matched by keeping all places that the name may have reached in the pattern, instead
// of trying one after another: with several "**", backtracking would take exponential time.

#include "host/name_pattern.h"

#include <algorithm>

#include "host/name_symbols.h"

namespace corv::host {
namespace {

// Returns the text between square brackets at the front of a pattern, empty if they are not closed.
std::string_view Bracketed(std::string_view pattern) {
    // a closing bracket that comes first belongs to the set
    const std::size_t first = pattern.starts_with("[!") ? 3 : 2;
    const std::size_t close = pattern.find(']', first);
    return close == std::string_view::npos ? std::string_view() : pattern.substr(1, close - 1);
}

// "3", "7:4", "7 downto 4", "1,2".
bool IsIndex(std::string_view text) {
    const std::size_t letter = text.find_first_not_of("0123456789:, ");
    return letter == std::string_view::npos || text.substr(letter).starts_with("downto ") ||
           text.substr(letter).starts_with("to ");
}

// Returns the length of a name that a backslash begins and another one closes, 0 if there is none.
// An escaped name that nothing closes does not count here, since a pattern continues after it.
std::size_t ClosedNameLength(std::string_view text, bool level_start) {
    if (!level_start || !text.starts_with('\\')) {
        return 0;
    }
    std::size_t end = text.find('\\', 1);
    while (end != std::string_view::npos && text.substr(end + 1).starts_with('\\')) {
        end = text.find('\\', end + 2);
    }
    return end == std::string_view::npos || end == 1 ? 0 : end + 1;
}

bool EndsLevel(char c) {
    return c == '.' || c == '(';
}

}  // namespace

NamePattern::NamePattern(std::string_view pattern, Brackets brackets) {
    using Kind = Token::Kind;
    pattern = WithoutLeadingSeparators(pattern);
    std::size_t extended = 0;  // remaining characters of an extended name
    bool level_start = true;
    for (std::size_t at = 0; at < pattern.size();) {
        const std::string_view rest = pattern.substr(at);
        extended = extended > 0 ? extended : ClosedNameLength(rest, level_start);
        const std::string_view bracketed =
            extended == 0 && rest[0] == '[' ? Bracketed(rest) : std::string_view();
        std::size_t length = 1;
        if (rest[0] == '*') {
            length = std::min(rest.find_first_not_of('*'), rest.size());
            AddStars(length);
        } else if (rest[0] == '?') {
            tokens_.push_back({Kind::One, 0, false, false, {}});
        } else if (!bracketed.empty() && (brackets == Brackets::Sets || !IsIndex(bracketed))) {
            length = AddSet(bracketed);
        } else {
            tokens_.push_back({Kind::Character, rest[0], extended > 0, false, {}});
        }
        level_start = extended == 0 && IsNameSeparator(rest[0]);
        extended -= std::min(extended, length);
        at += length;
    }
    wildcards_ = std::any_of(tokens_.begin(), tokens_.end(),
                             [](const Token& token) { return token.kind != Kind::Character; });
}

void NamePattern::AddStars(std::size_t count) {
    tokens_.push_back(
        {count > 1 ? Token::Kind::DoubleStar : Token::Kind::Star, 0, false, false, {}});
}

// Adds a set; returns its length in the pattern.
std::size_t NamePattern::AddSet(std::string_view text) {
    Token token{Token::Kind::Set, 0, false, text.starts_with('!'), {}};
    for (std::size_t at = token.negated ? 1 : 0; at < text.size();) {
        const bool range = at + 2 < text.size() && text[at + 1] == '-';
        token.ranges.emplace_back(text[at], text[range ? at + 2 : at]);
        at += range ? 3 : 1;
    }
    tokens_.push_back(std::move(token));
    return text.size() + 2;
}

bool NamePattern::Takes(const Token& token, char c, bool extended, bool member) {
    using Kind = Token::Kind;
    if (token.kind == Kind::DoubleStar) {
        return extended || !member || c != '(';
    }
    if (token.kind != Kind::Character && !extended && EndsLevel(c)) {
        return false;
    }
    const auto holds = [&](char candidate) {
        const auto code = static_cast<unsigned char>(candidate);
        return std::any_of(token.ranges.begin(), token.ranges.end(), [&](const auto& range) {
            return range.first <= code && code <= range.second;
        });
    };
    switch (token.kind) {
        case Kind::Set: {
            const char upper = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
            const bool in = extended ? holds(c) : holds(LowerCase(c)) || holds(upper);
            return in != token.negated;
        }
        case Kind::Character: {
            if (extended || token.extended) {
                return extended && token.character == c;
            }
            const char wanted = token.character;
            return LowerCase(c) == (IsNameSeparator(wanted) ? '.'
                                    : wanted == '['         ? '('
                                    : wanted == ']'         ? ')'
                                                            : LowerCase(wanted));
        }
        default:
            return true;
    }
}

// Adds a place and, since a star may match nothing, those after the stars that follow. Places come
// in rising order, so a duplicate is always the last one.
void NamePattern::Add(State& state, std::size_t place) const {
    for (;; ++place) {
        if (state.empty() || state.back() < place) {
            state.push_back(place);
        }
        if (place == tokens_.size() || tokens_[place].kind < Token::Kind::Star) {
            return;
        }
    }
}

NamePattern::State NamePattern::Start() const {
    State state;
    Add(state, 0);
    return state;
}

void NamePattern::Advance(State& state, std::string_view part, bool member) const {
    State next;
    if (!member) {
        part = WithoutLeadingSeparators(part);
    }
    ForEachSymbol(part, !member, [&](char c, bool extended) {
        next.clear();
        for (const std::size_t place : state) {
            if (place < tokens_.size() && Takes(tokens_[place], c, extended, member)) {
                Add(next, tokens_[place].kind < Token::Kind::Star ? place + 1 : place);
            }
        }
        state.swap(next);
    });
}

bool NamePattern::Accepts(const State& state) const {
    return !state.empty() && state.back() == tokens_.size();
}

bool FitsGlob(std::string_view name, std::string_view pattern) {
    const NamePattern compiled(pattern);
    NamePattern::State state = compiled.Start();
    compiled.Advance(state, name, false);
    return compiled.Accepts(state);
}

}  // namespace corv::host
