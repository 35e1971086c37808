#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "stremo/ghw/input.h"
#include "stremo/ghw/notes.h"

namespace corv::ghw {

inline constexpr std::size_t kMostCharacters = 65'535;  // of a name; longer ones could not be saved

// The strings of a file, which all names in it refer to by number, from 1. Number 0 is no name.
//
// The file has them sorted, each as the number of characters that it shares with the previous one,
// and its remaining characters. These end at the first byte in 0 to 31 or 128 to 159, which begins
// the number of shared characters of the next string: five bits per byte, the low ones first, bit 7
// set in all bytes but the last.
class Strings {
public:
    // Reads the section after its tag. A failure is recorded in the input; what was read stays.
    void Read(Input& in, Notes& notes);

    std::size_t size() const noexcept { return ends_.size() - 1; }
    // Returns an empty text for 0 and unknown numbers.
    std::string_view operator[](std::uint64_t number) const noexcept {
        return number == 0 || number > size() ? std::string_view() : At(number);
    }

    // Reads the number of a string and returns the string; an unknown number is noted.
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
