#include "util/fields.h"

#include <algorithm>
#include <charconv>
#include <limits>

#include "platform/ascii.h"
#include "util/saturate.h"

namespace corv::util {
namespace {

// Skips white space and a plus sign, which atoi accepts and from_chars does not.
std::string_view SkipToNumber(std::string_view text) noexcept {
    text.remove_prefix(static_cast<std::size_t>(
        std::find_if_not(text.begin(), text.end(), platform::IsSpace) - text.begin()));
    if (text.size() > 1 && text[0] == '+' && text[1] != '-') {
        text.remove_prefix(1);
    }
    return text;
}

// Returns whether a number outside the range of a double is too large rather than too small, which
// from_chars reports alike: it is too large if its first non-zero digit is before the point, after
// the exponent has moved that point.
bool IsLarge(std::string_view number) noexcept {
    const std::size_t mantissa = std::min(number.find_first_of("eE"), number.size());
    const std::size_t point = std::min(number.find('.'), mantissa);
    const std::size_t first = std::min(number.find_first_of("123456789"), mantissa);
    const auto place = static_cast<std::int64_t>(point) - static_cast<std::int64_t>(first);
    const bool scaled = mantissa < number.size();
    return SaturatingAdd(place, scaled ? LeadingInteger(number.substr(mantissa + 1)) : 0) > 0;
}

}  // namespace

std::optional<std::string_view> FieldReader::Next() noexcept {
    const std::size_t begin = rest_.find_first_not_of(separator_);
    if (begin == std::string_view::npos) {
        rest_ = {};
        return std::nullopt;
    }
    const std::size_t end = std::min(rest_.find(separator_, begin), rest_.size());
    const std::string_view field = rest_.substr(begin, end - begin);
    rest_.remove_prefix(end);
    return field;
}

std::int64_t LeadingInteger(std::string_view text) noexcept {
    text = SkipToNumber(text);
    std::int64_t number = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
    if (read.ec == std::errc::result_out_of_range) {
        return text[0] == '-' ? Int64Limits::min() : Int64Limits::max();
    }
    return number;
}

int LeadingInt(std::string_view text) noexcept {
    using Limits = std::numeric_limits<int>;
    return static_cast<int>(
        std::clamp<std::int64_t>(LeadingInteger(text), Limits::min(), Limits::max()));
}

double LeadingReal(std::string_view text) noexcept {
    text = SkipToNumber(text);
    double number = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
    if (read.ec != std::errc::result_out_of_range) {
        return number;
    }
    const auto length = static_cast<std::size_t>(read.ptr - text.data());
    const double end =
        IsLarge(text.substr(0, length)) ? std::numeric_limits<double>::infinity() : 0;
    return text[0] == '-' ? -end : end;
}

}  // namespace corv::util
