#include "stremo/vcd/values.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

#include "platform/ascii.h"

namespace corv::vcd {
namespace {

// The letters of port states, by level.
constexpr std::string_view kPortStates[] = {"", "NX?AaBbCc", "DLdl0", "UHuh1", "ZTFf"};

int HexDigit(char c) noexcept {
    const char lower = platform::Lower(c);
    if (platform::IsDigit(c)) {
        return c - '0';
    }
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

// Reads the number after a backslash, with digits below a radix.
char ReadNumber(std::string_view text, std::size_t& at, int radix, std::size_t most) noexcept {
    unsigned number = 0;
    for (std::size_t i = 0; i < most && at < text.size(); ++i, ++at) {
        const int digit = HexDigit(text[at]);
        if (digit < 0 || digit >= radix) {
            break;
        }
        number = number * static_cast<unsigned>(radix) + static_cast<unsigned>(digit);
    }
    return static_cast<char>(number);
}

char ReadEscape(std::string_view text, std::size_t& at) noexcept {
    constexpr std::string_view kLetters = "abfnrtv";
    constexpr std::string_view kMeanings = "\a\b\f\n\r\t\v";
    const char c = text[at];
    if (c >= '0' && c <= '7') {
        return ReadNumber(text, at, 8, 3);
    }
    ++at;
    if (c == 'x') {
        return ReadNumber(text, at, 16, 2);
    }
    const std::size_t letter = kLetters.find(c);
    return letter != std::string_view::npos ? kMeanings[letter] : c;
}

// Returns whether a decimal number outside the range of doubles is too small rather than too large:
// whether its first significant digit is after the point.
bool IsTiny(std::string_view text) noexcept {
    const std::size_t e = std::min(text.find_first_of("eE"), text.size());
    const std::size_t point = std::min(text.find('.'), e);
    const std::size_t first = text.find_first_of("123456789");
    std::string_view digits = text.substr(std::min(e + 1, text.size()));
    const bool negative = digits.starts_with('-');
    digits.remove_prefix(negative || digits.starts_with('+') ? 1 : 0);
    std::int64_t exponent = 0;
    const auto error = std::from_chars(digits.data(), digits.data() + digits.size(), exponent).ec;
    if (error == std::errc::result_out_of_range) {
        return negative;
    }
    // places before the point, with the exponent applied
    const auto places = static_cast<std::int64_t>(point) - static_cast<std::int64_t>(first);
    return first < e && places + (negative ? -exponent : exponent) < 0;
}

}  // namespace

unsigned ExtendingLevel(unsigned first) noexcept {
    constexpr unsigned kLevelL = 6;
    constexpr unsigned kLevelH = 7;
    return first == kLevel1 || first == kLevelL || first == kLevelH ? unsigned{kLevel0} : first;
}

unsigned LevelOfPort(Byte state) noexcept {
    for (unsigned level = 0; level < std::size(kPortStates); ++level) {
        if (kPortStates[level].find(static_cast<char>(state)) != std::string_view::npos) {
            return level;
        }
    }
    return kNoLevel;
}

bool ReadReal(std::string_view text, double& number, bool& passes) noexcept {
    if (text.starts_with('+')) {
        text.remove_prefix(1);
    }
    const char* const end = text.data() + text.size();
    const auto [at, error] = std::from_chars(text.data(), end, number);
    if (at != end || text.empty() || error == std::errc::invalid_argument) {
        return false;
    }
    passes = error == std::errc::result_out_of_range && !IsTiny(text);
    if (error == std::errc::result_out_of_range) {
        number = passes ? std::numeric_limits<double>::max() : 0.0;
        number = text.starts_with('-') ? -number : number;
    }
    return true;
}

void Unescape(std::string_view text, std::string& characters) {
    characters.clear();
    for (std::size_t at = 0; at < text.size();) {
        if (text[at] == '\\' && at + 1 < text.size()) {
            ++at;
            characters += ReadEscape(text, at);
        } else {
            characters += text[at++];
        }
    }
}

}  // namespace corv::vcd
