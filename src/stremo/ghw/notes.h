#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace corv::ghw {

// What a reader had to repair, assume or leave out.
class Notes {
public:
    // Adds a sentence. Equal ones become one with the place of the first and their number. Only the
    // first hundred different ones are kept, so that a damaged file cannot fill the memory.
    void Add(std::size_t offset, std::string_view sentence);

    // Returns all sentences in the order of their places: "byte 4096: the type has no name (2
    // times)".
    std::vector<std::string> Sentences() const;

private:
    struct Note {
        std::size_t offset;
        std::string sentence;
        std::uint64_t count;
    };
    std::vector<Note> notes_;
    std::uint64_t unsaid_ = 0;
};

}  // namespace corv::ghw
