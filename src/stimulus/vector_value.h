#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

// The values of a vector and the pieces they are cut into, one per element.
namespace corv::stimulus {

struct VectorShape {
    int width;
    int split_mode;  // 0: words, else characters
    bool InWords() const noexcept { return split_mode == 0; }
};

class VectorValue {
public:
    // A value as it stands in a formula. Nothing when it can't be cut: it is empty, or in
    // characters neither a number nor exactly of the width.
    static std::optional<VectorValue> Read(std::string_view word, VectorShape shape);

    // How many bits a number needs that is cut to the width; 0 for any other value.
    int BitsOfCutNumber() const noexcept { return bits_of_cut_number_; }
    // How many words there are; 0 for a value that is cut into characters.
    std::size_t CountWords() const noexcept;

    // Appends the next piece, that of element 0 first; false when the value is used up.
    bool AppendNext(std::string& out);

private:
    enum class Kind { Repeat, Words, Characters, QuotedCharacters };

    std::string_view Text() const noexcept { return bits_ ? std::string_view(*bits_) : text_; }

    Kind kind_ = Kind::Characters;
    std::string_view text_;            // without the pair around it
    std::optional<std::string> bits_;  // the digits of a number, instead
    std::size_t at_ = 0;
    int bits_of_cut_number_ = 0;
};

}  // namespace corv::stimulus
