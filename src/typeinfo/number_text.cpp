#include "typeinfo/number_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

#include "platform/ascii.h"
#include "typeinfo/fixed_text.h"

namespace corv::typeinfo {
namespace {

// Integers saturate here: beyond 32 bits, but with room for one more multiplication in 64.
constexpr std::uint64_t kTooLarge = std::uint64_t{1} << 40;
constexpr std::size_t kLongestDouble = 32;
constexpr std::size_t kLongestWithUnderscores = 1024;

// Takes a sign from the front; returns whether there was one.
bool TakeSign(std::string_view& text, bool& negative) noexcept {
    if (!text.starts_with('-') && !text.starts_with('+')) {
        return false;
    }
    negative = text[0] == '-';
    text.remove_prefix(1);
    return true;
}

unsigned DigitValue(char c) noexcept {
    constexpr unsigned kNoDigit = 99;
    const char letter = platform::Lower(c);
    if (platform::IsDigit(c)) {
        return static_cast<unsigned>(c - '0');
    }
    return letter >= 'a' && letter <= 'f' ? static_cast<unsigned>(letter - 'a') + 10 : kNoDigit;
}

// Returns how much of the text is digits of the radix with single underscores between them.
std::size_t DigitsLength(std::string_view text, unsigned radix) noexcept {
    std::size_t length = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool joins = text[i] == '_' && length == i && i > 0;
        if (!joins && DigitValue(text[i]) >= radix) {
            break;
        }
        length = joins ? length : i + 1;
    }
    return length;
}

// Takes digits from the front and returns their value, at most kTooLarge.
std::optional<std::uint64_t> TakeDigits(std::string_view& text, unsigned radix) noexcept {
    const std::size_t length = DigitsLength(text, radix);
    std::uint64_t number = 0;
    for (const char c : text.substr(0, length)) {
        number = c == '_' ? number : std::min(number * radix + DigitValue(c), kTooLarge);
    }
    text.remove_prefix(length);
    return length == 0 ? std::nullopt : std::optional(number);
}

// Takes the exponent at the end of a text, if there is one, and applies it. The loop ends as soon
// as the number is too large, so a huge exponent costs nothing.
bool TakeExponent(std::string_view& text, unsigned radix, std::uint64_t& number) noexcept {
    if (text.empty() || platform::Lower(text[0]) != 'e') {
        return true;
    }
    text.remove_prefix(text.starts_with("e+") || text.starts_with("E+") ? 2 : 1);
    const auto exponent = TakeDigits(text, 10);
    for (std::uint64_t left = exponent.value_or(0); left > 0 && number > 0 && number < kTooLarge;
         --left) {
        number *= radix;
    }
    return exponent.has_value();
}

// Takes the part after the "#" of a based literal.
std::optional<std::uint64_t> TakeBased(std::string_view& text, std::uint64_t radix) noexcept {
    if (radix < 2 || radix > 16) {
        return std::nullopt;
    }
    const auto base = static_cast<unsigned>(radix);
    std::optional<std::uint64_t> number = TakeDigits(text, base);
    if (number && text.starts_with('#')) {
        text.remove_prefix(1);
        if (!TakeExponent(text, base, *number)) {
            return std::nullopt;
        }
    }
    return number;
}

std::optional<std::int32_t> Signed(std::uint64_t magnitude, bool negative) noexcept {
    constexpr std::uint64_t kMax = std::numeric_limits<std::int32_t>::max();
    if (magnitude > kMax + (negative ? 1 : 0)) {
        return std::nullopt;
    }
    const auto number = static_cast<std::int64_t>(magnitude);
    return static_cast<std::int32_t>(negative ? -number : number);
}

// The pieces of a real number without its sign. IsTiny needs them without underscores.
struct RealText {
    std::string_view whole;
    std::string_view fraction;
    std::string_view exponent;  // with its sign
};

std::optional<RealText> SplitReal(std::string_view text) noexcept {
    const auto take = [&text](std::size_t length) {
        const std::string_view taken = text.substr(0, length);
        text.remove_prefix(taken.size());
        return taken;
    };
    RealText real;
    real.whole = take(DigitsLength(text, 10));
    if (text.starts_with('.')) {
        take(1);
        real.fraction = take(DigitsLength(text, 10));
        if (real.fraction.empty()) {
            return std::nullopt;
        }
    }
    if (!text.empty() && platform::Lower(text[0]) == 'e') {
        take(1);
        const std::size_t sign = text.starts_with('-') || text.starts_with('+') ? 1 : 0;
        const std::size_t digits = DigitsLength(text.substr(sign), 10);
        real.exponent = take(sign + digits);
        if (digits == 0) {
            return std::nullopt;
        }
    }
    return real.whole.empty() || !text.empty() ? std::nullopt : std::optional(real);
}

// Returns whether a number outside the range of doubles is too small rather than too large, which
// from_chars reports alike. An exponent that does not fit into 64 bits decides by its sign.
bool IsTiny(const RealText& real) noexcept {
    constexpr std::int64_t kFar = std::int64_t{1} << 40;
    std::int64_t exponent = 0;
    std::string_view digits = real.exponent;
    digits.remove_prefix(digits.starts_with('+') ? 1 : 0);
    const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), exponent);
    if (read.ec != std::errc()) {
        exponent = digits.empty() ? 0 : digits[0] == '-' ? -kFar : kFar;
    }
    const std::size_t first = real.whole.find_first_not_of('0');
    const auto place = first != std::string_view::npos
                           ? static_cast<std::int64_t>(real.whole.size() - first)
                           : -static_cast<std::int64_t>(std::min(
                                 real.fraction.find_first_not_of('0'), real.fraction.size()));
    return exponent < -place;
}

}  // namespace

std::optional<std::int32_t> ReadInteger(std::string_view text) noexcept {
    bool negative = false;
    const bool sign = TakeSign(text, negative);
    std::optional<std::uint64_t> number = TakeDigits(text, 10);
    if (number && text.starts_with('#')) {
        text.remove_prefix(1);
        if (TakeSign(text, negative) && sign) {
            return std::nullopt;
        }
        number = TakeBased(text, *number);
    } else if (number && !TakeExponent(text, 10, *number)) {
        return std::nullopt;
    }
    return number && text.empty() ? Signed(*number, negative) : std::nullopt;
}

std::optional<double> ReadReal(std::string_view text) noexcept {
    bool negative = false;
    TakeSign(text, negative);
    if (!SplitReal(text)) {
        return std::nullopt;
    }
    // from_chars does not accept underscores; a fixed buffer keeps this from allocating.
    std::array<char, kLongestWithUnderscores> plain;
    if (text.find('_') != std::string_view::npos) {
        if (text.size() > plain.size()) {
            return std::nullopt;
        }
        const char* const end = std::remove_copy(text.begin(), text.end(), plain.data(), '_');
        text = {plain.data(), static_cast<std::size_t>(end - plain.data())};
    }
    double number = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
    if (read.ec == std::errc::result_out_of_range) {
        if (!IsTiny(*SplitReal(text))) {
            return std::nullopt;
        }
        number = 0;
    }
    return negative ? -number : number;
}

template <class Out>
void AppendInteger(Out& out, std::int32_t number, int radix) {
    const bool based = radix == 2 || radix == 8 || radix == 16;
    const auto magnitude =
        static_cast<std::uint32_t>(number < 0 ? -std::int64_t{number} : std::int64_t{number});
    std::array<char, std::numeric_limits<std::uint32_t>::digits> digits;
    char* const end =
        std::to_chars(digits.data(), digits.data() + digits.size(), magnitude, based ? radix : 10)
            .ptr;
    std::transform(digits.data(), end, digits.data(), platform::Upper);
    out += number < 0 ? "-" : "";
    out += radix == 2 && based ? "2#" : radix == 8 && based ? "8#" : based ? "16#" : "";
    out.append(digits.data(), end);
    out += based ? "#" : "";
}

template <class Out>
void AppendReal(Out& out, double number) {
    std::array<char, kLongestDouble> text;
    out.append(text.data(), std::to_chars(text.data(), text.data() + text.size(), number).ptr);
}

void AppendSixDigits(std::string& out, double number) {
    std::array<char, kLongestDouble> text;
    out.append(text.data(), std::to_chars(text.data(), text.data() + text.size(), number,
                                          std::chars_format::general, 6)
                                .ptr);
}

template void AppendInteger(std::string&, std::int32_t, int);
template void AppendInteger(FixedText&, std::int32_t, int);
template void AppendReal(std::string&, double);
template void AppendReal(FixedText&, double);

double RoundToDigits(double number, int digits) noexcept {
    std::array<char, kLongestDouble> text;
    const char* const end = std::to_chars(text.data(), text.data() + text.size(), number,
                                          std::chars_format::scientific, digits - 1)
                                .ptr;
    double rounded = 0;
    const auto read = std::from_chars(text.data(), end, rounded);
    return read.ec == std::errc() ? rounded : std::copysign(HUGE_VAL, number);  // rounded up
}

}  // namespace corv::typeinfo
