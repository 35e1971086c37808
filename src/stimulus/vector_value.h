#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

// The values of a vector and the pieces into which they are split, one per element.
namespace corv::stimulus {

struct VectorShape {
    int width;
    int split_mode;  // 0: words, else characters
    bool InWords() const noexcept { return split_mode == 0; }
};

class VectorValue {
public:
    // Reads a value of a formula. Returns nullopt if it cannot be split: it is empty or, for
    // characters, neither a number nor exactly of the width.
    static std::optional<VectorValue> Read(std::string_view word, VectorShape shape);

    // Returns how many bits a number needs that is cut to the width; 0 for any other value.
    int BitsOfCutNumber() const noexcept { return bits_of_cut_number_; }
    // Returns the number of words; 0 for a value that is split into characters.
    std::size_t CountWords() const noexcept;

    // Appends the next piece, beginning with that of element 0. Returns false at the end of the
    // value.
    bool AppendNext(std::string& out);

private:
    enum class Kind { Repeat, Words, Characters, QuotedCharacters };

    std::string_view Text() const noexcept { return bits_ ? std::string_view(*bits_) : text_; }

    Kind kind_ = Kind::Characters;
    std::string_view text_;            // without the pair around it
    std::optional<std::string> bits_;  // the digits of a number, used instead of text_
    std::size_t at_ = 0;
    int bits_of_cut_number_ = 0;
};

}  // namespace corv::stimulus
