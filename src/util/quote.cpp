#include "util/quote.h"

#include <algorithm>

namespace corv::util {
namespace {

constexpr bool IsControl(char c) noexcept {
    return static_cast<unsigned char>(c) < ' ' || c == '\x7f';
}
constexpr bool Continues(char c) noexcept {
    return (static_cast<unsigned char>(c) & 0xc0U) == 0x80U;
}

}  // namespace

std::string Quote(std::string_view word) {
    constexpr std::size_t kMost = 40;
    std::size_t length = std::min(word.size(), kMost);
    while (length > 0 && length < word.size() && Continues(word[length])) {
        --length;
    }
    std::string out = "`";
    out += word.substr(0, length);
    std::replace_if(out.begin(), out.end(), IsControl, ' ');
    out += length < word.size() ? "...`" : "`";
    return out;
}

}  // namespace corv::util
