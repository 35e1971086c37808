#pragma once

#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

namespace corv::host {

// A pattern of signal names. Outside \extended names\ case does not matter, and ".", "/" and the
// hierarchy separator are alike.
//
//     *        any characters within a level; the index of an element is a level of its own
//     **       any characters across levels, but no index of an element
//     ?        one character within a level
//     [a-f0]   one of these characters, [!a-f0] one of the others
//
// Matching takes time in proportion to the lengths of the name and of the pattern multiplied,
// whatever they hold.
class NamePattern {
public:
    // How "[3]" and "[7:4]" are read: as the index of an element, or as a set of characters like
    // any other.
    enum class Brackets { Elements, Sets };

    explicit NamePattern(std::string_view pattern, Brackets brackets = Brackets::Elements);

    // Returns whether more than one name can match.
    bool HasWildcards() const { return wildcards_; }

    // The places in the pattern that the characters so far may have led to; if there are none,
    // nothing matches.
    using State = std::vector<std::size_t>;
    State Start() const;
    // Advances by a part of a name. The name of a signal's member continues that of the signal;
    // there "**" does not cross a parenthesis, so that elements match only if the pattern has one.
    void Advance(State& state, std::string_view part, bool member) const;
    bool Accepts(const State& state) const;

private:
    struct Token {
        enum class Kind { Character, One, Set, Star, DoubleStar } kind;
        char character = 0;
        bool extended = false;                                        // inside an extended name
        bool negated = false;                                         // a set: all but these
        std::vector<std::pair<unsigned char, unsigned char>> ranges;  // of a set
    };

    static bool Takes(const Token& token, char c, bool extended, bool member);
    std::size_t AddSet(std::string_view text);
    void AddStars(std::size_t count);
    void Add(State& state, std::size_t place) const;

    std::vector<Token> tokens_;
    bool wildcards_ = false;
};

// Returns whether a declared name matches a pattern.
bool FitsGlob(std::string_view name, std::string_view pattern);

}  // namespace corv::host
