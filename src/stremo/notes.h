#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace corv::recording {

// What a reader had to repair, guess or leave out, with the places in the file.
class Notes {
public:
    // Equal sentences become one with the place of the first and their number. Only the first
    // hundred different ones are kept.
    void Add(std::size_t offset, std::string_view sentence);
    // The same for sentences about a word of the file, for which the pattern has a %: those of one
    // pattern become one with the word of the first, and are always kept.
    void Add(std::size_t offset, std::string_view pattern, std::string_view word);

    // Returns all sentences in the order of their places, each after the text that `place` makes of
    // its offset: "byte 4096: the type has no name (2 times)".
    std::vector<std::string> Sentences(const std::function<std::string(std::size_t)>& place) const;

private:
    struct Note {
        std::size_t offset;
        std::string pattern;  // or the sentence
        std::string sentence;
        std::uint64_t count;
    };

    // Counts a note of the pattern, if there is one; returns whether there is.
    bool Counts(std::string_view pattern);

    std::vector<Note> notes_;
    std::uint64_t unsaid_ = 0;
};

}  // namespace corv::recording
