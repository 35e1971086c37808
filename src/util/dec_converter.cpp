#include "corv/util/dec_converter.h"

#include <limits>
#include <optional>
#include <string_view>

#include "platform/ascii.h"
#include "platform/guard.h"

namespace {

constexpr unsigned kMinRadix = 2;
constexpr unsigned kMaxRadix = 16;
constexpr unsigned kNoDigit = 99;

unsigned DigitValue(char c) noexcept {
    if (corv::platform::IsDigit(c)) {
        return static_cast<unsigned>(c - '0');
    }
    const char letter = corv::platform::Lower(c);
    return letter >= 'a' && letter <= 'f' ? static_cast<unsigned>(letter - 'a') + 10 : kNoDigit;
}

// Returns the digits as a number below 2^64; nothing if there are none, or characters that are not
// digits of the radix. As in VHDL, an underscore has a digit on either side.
std::optional<std::uint64_t> ReadDigits(std::string_view text, unsigned radix,
                                        bool underscores) noexcept {
    std::uint64_t number = 0;
    // an underscore may not come first, as after another one
    char before = '_';
    for (const char c : text) {
        if (c == '_' && underscores && before != '_') {
            before = c;
            continue;
        }
        const unsigned digit = DigitValue(c);
        if (digit >= radix ||
            number > (std::numeric_limits<std::uint64_t>::max() - digit) / radix) {
            return std::nullopt;
        }
        number = number * radix + digit;
        before = c;
    }
    return before == '_' ? std::nullopt : std::optional(number);
}

// Does the same with a sign before the digits; a negative number can be as low as -2^63.
std::optional<std::int64_t> ReadSigned(std::string_view text, unsigned radix,
                                       bool underscores) noexcept {
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) {
        text.remove_prefix(1);
    }
    const auto magnitude = ReadDigits(text, radix, underscores);
    if (!magnitude || (negative && *magnitude > std::uint64_t{1} << 63)) {
        return std::nullopt;
    }
    return static_cast<std::int64_t>(negative ? 0 - *magnitude : *magnitude);
}

int Deliver(std::optional<std::int64_t> number, std::int64_t* value) noexcept {
    if (!number || !value) {
        return 0;
    }
    *value = *number;
    return 1;
}

}  // namespace

int c_decConverter::Convert(const char* text, std::int64_t* value) noexcept {
    const std::string_view literal(text ? text : "");
    const std::size_t mark = literal.find('#');
    if (mark == std::string_view::npos) {
        return 0;
    }
    const auto radix = ReadDigits(literal.substr(0, mark), 10, false);
    std::string_view digits = literal.substr(mark + 1);
    // VHDL requires the second #; this reader has never done so
    if (digits.ends_with('#')) {
        digits.remove_suffix(1);
    }
    if (!radix || *radix < kMinRadix || *radix > kMaxRadix) {
        return 0;
    }
    return Deliver(ReadSigned(digits, static_cast<unsigned>(*radix), true), value);
}

int c_decConverter::Convert(const char* text, int radix, std::int64_t* value) noexcept {
    const std::string_view digits(text ? text : "");
    if (radix == 10) {
        // only decimal numbers have a sign; the others describe 64 bits
        return Deliver(ReadSigned(digits, 10, false), value);
    }
    if (radix < static_cast<int>(kMinRadix) || radix > static_cast<int>(kMaxRadix)) {
        return 0;
    }
    const auto number = ReadDigits(digits, static_cast<unsigned>(radix), false);
    return number ? Deliver(static_cast<std::int64_t>(*number), value) : 0;
}

int c_decConverter::MakeBin(std::uint64_t value, int width, CString& out) noexcept {
    out.Empty();
    return corv::platform::Guarded(0, [&] {
        std::string digits(width > 0 ? static_cast<std::size_t>(width) : 0, '0');
        for (auto digit = digits.rbegin(); digit != digits.rend() && value != 0; ++digit) {
            *digit = (value & 1) != 0 ? '1' : '0';
            value >>= 1;
        }
        out = CString(std::move(digits));
        return 1;
    });
}
