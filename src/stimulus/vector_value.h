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

    // Appends the next piece, that of element 0 first; false when the value is used up.
    bool AppendNext(std::string& out);

private:
    enum class Kind { Repeat, Words, Characters, QuotedCharacters };

    std::string_view Text() const noexcept { return bits_ ? std::string_view(*bits_) : text_; }

    Kind kind_ = Kind::Characters;
    std::string_view text_;            // without the pair around it
    std::optional<std::string> bits_;  // the digits of a number, instead
    std::size_t at_ = 0;
};

}  // namespace corv::stimulus
