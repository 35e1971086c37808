#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "stremo/ghw/input.h"
#include "stremo/ghw/notes.h"

namespace corv::ghw {

inline constexpr std::size_t kMostCharacters = 65'535;  // of a name, as signals can be saved with

// The strings of a file, which all names in it refer to by number, from 1. Number 0 is no name.
//
// They stand sorted in the file, each as the number of characters that it shares with the one
// before and the rest of it. The rest ends at the first byte in 0 to 31 or 128 to 159, which begins
// the number of shared characters of the next one: five bits to a byte, the low ones first, bit 7
// set in all but the last.
class Strings {
public:
    // Reads the section behind its tag. A failure is the input's; what was read stays.
    void Read(Input& in, Notes& notes);

    std::size_t size() const noexcept { return ends_.size() - 1; }
    // Empty for 0 and unknown numbers.
    std::string_view operator[](std::uint64_t number) const noexcept {
        return number == 0 || number > size() ? std::string_view() : At(number);
    }

    // Reads the number of a string; one that is not there is noted.
    std::string_view ReadName(Input& in, Notes& notes) const;

private:
    void ReadString(Input& in, std::uint64_t shared, Notes& notes);
    std::string_view At(std::size_t number) const noexcept {
        return std::string_view(characters_)
            .substr(ends_[number - 1], ends_[number] - ends_[number - 1]);
    }

    std::string characters_;  // of all strings
    std::vector<std::size_t> ends_{0};
};

}  // namespace corv::ghw
