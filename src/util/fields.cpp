#include "util/fields.h"

#include <algorithm>
#include <charconv>
#include <limits>

#include "platform/ascii.h"
#include "util/saturate.h"

namespace corv::util {
namespace {

// White space and a plus sign stand before what from_chars reads.
std::string_view SkipToNumber(std::string_view text) noexcept {
    text.remove_prefix(static_cast<std::size_t>(
        std::find_if_not(text.begin(), text.end(), platform::IsSpace) - text.begin()));
    if (text.size() > 1 && text[0] == '+' && text[1] != '-') {
        text.remove_prefix(1);
    }
    return text;
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
    return read.ec == std::errc() ? number : 0;
}

}  // namespace corv::util
