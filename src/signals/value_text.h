#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "corv/typeinfo/type_info.h"
#include "typeinfo/scalar_text.h"

namespace corv::signals {

inline constexpr std::size_t kTextBufferSize = 10240;   // characters, with the zero
inline constexpr std::size_t kValueBufferSize = 10240;  // bytes

// Where all signals build the texts of their values. There is one for the library.
//
// Texts are written at the position and end with a zero. What finds no room is not written, and
// `failed` is set: the outermost text of the pass is null then.
struct ValueTexts {
    std::array<char, kTextBufferSize> text{};
    std::size_t position = 0;  // in the text, at most that of its last character
    bool in_pass = false;      // while an outermost text is being built
    std::array<unsigned char, kValueBufferSize> values{};  // of an array's elements
    int nesting = 0;                                       // texts within texts of the pass
    bool failed = false;                                   // in this pass

    char* Here() noexcept { return text.data() + position; }
    // Writes a piece and moves after it. Returns false if it does not fit, and once the pass has
    // failed: nothing more is written then, so that members nested without an end are not descended
    // until the buffer is full.
    bool Append(std::string_view piece) noexcept;
    // Writes the text of a stored value, without moving; null when it has none or doesn't fit.
    const char* WriteValue(const KTypeInfo& type, const unsigned char* bytes,
                           typeinfo::ScalarStyle style) noexcept;
    // Moves after the text that is here.
    void MoveToEnd() noexcept;
    // Moves back; the text from there on is gone.
    void Rewind(std::size_t place) noexcept;
};

ValueTexts& SharedValueTexts() noexcept;

// Brings the texts to the state that they have when the library is loaded.
void ResetValueTexts() noexcept;

// A text being built, for as long as it lives. The outermost one begins at the start of the buffer,
// those within it after what is there.
class ValueTextPass {
public:
    explicit ValueTextPass(ValueTexts& texts) noexcept;
    ValueTextPass(const ValueTextPass&) = delete;
    ValueTextPass& operator=(const ValueTextPass&) = delete;
    ~ValueTextPass();

    // What the pass gives for the text that was built, if one was. Without one nothing is left.
    const char* Result(const char* built) noexcept;

private:
    ValueTexts& texts_;
    bool was_in_pass_;
    std::size_t start_;
};

}  // namespace corv::signals
