#include "util/time_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "corv/util/time_units.h"
#include "platform/ascii.h"
#include "util/saturate.h"

namespace corv::util {
namespace {

constexpr double kMaxBaseUnits = 9.2e18;
// The largest whole number of each unit from the base unit on, so that no time exceeds
// kMaxBaseUnits picoseconds. That limit is a little below 2^63, where doubles would round up to it.
constexpr auto kMaxWhole = [] {
    std::array<std::int64_t, kTimeUnits.size()> limits{};
    for (unsigned unit = kBaseUnit; unit < limits.size(); ++unit) {
        limits[unit] = 9'200'000'000'000'000'000 / UnitRatio(kBaseUnit, unit);
    }
    return limits;
}();
constexpr std::size_t kExactDigits = 18;  // every number with this many digits fits into 63 bits

// The number of a time text, split into its pieces.
struct NumberText {
    bool negative = false;
    std::string_view whole;     // digits before the point, without leading zeros
    std::string_view fraction;  // digits after it, without trailing zeros
    std::string_view rest;      // what follows the number
    std::string_view digits;    // the number as written, without its sign
};

std::string_view TakeDigits(std::string_view& text) noexcept {
    const auto end = std::find_if_not(text.begin(), text.end(), platform::IsDigit);
    const auto count = static_cast<std::size_t>(end - text.begin());
    const std::string_view digits = text.substr(0, count);
    text.remove_prefix(count);
    return digits;
}

std::optional<NumberText> SplitNumber(std::string_view text) noexcept {
    NumberText out;
    if (!text.empty() && (text[0] == '-' || text[0] == '+')) {
        out.negative = text[0] == '-';
        text.remove_prefix(1);
    }
    const std::string_view start = text;
    out.whole = TakeDigits(text);
    if (!text.empty() && text[0] == '.') {
        text.remove_prefix(1);
        out.fraction = TakeDigits(text);
    }
    if (out.whole.empty() && out.fraction.empty()) {
        return std::nullopt;
    }
    out.rest = text;
    out.digits = start.substr(0, start.size() - text.size());
    out.whole.remove_prefix(std::min(out.whole.find_first_not_of('0'), out.whole.size()));
    out.fraction = out.fraction.substr(0, out.fraction.find_last_not_of('0') + 1);
    return out;
}

std::int64_t DigitsToInt(std::string_view digits) noexcept {
    std::int64_t number = 0;
    for (const char c : digits) {
        number = number * 10 + (c - '0');
    }
    return number;
}

std::int64_t PowerOfTen(std::size_t exponent) noexcept {
    std::int64_t power = 1;
    while (exponent-- > 0) {
        power *= 10;
    }
    return power;
}

// Reads a number with few digits. It is kept as whole + part / scale, which loses nothing, and
// moved to smaller units until it is whole or in the smallest unit. Returns nullopt if a step would
// leave 64 bits.
std::optional<TimeReading> ReadExact(const NumberText& text, int unit) noexcept {
    std::int64_t whole = DigitsToInt(text.whole);
    std::int64_t part = DigitsToInt(text.fraction);
    const std::int64_t scale = PowerOfTen(text.fraction.size());
    for (; part != 0 && unit > 0; --unit) {
        const std::int64_t step = kTimeUnits[static_cast<unsigned>(unit) - 1].per_next;
        if (part > Int64Limits::max() / step || whole > (Int64Limits::max() - step) / step) {
            return std::nullopt;
        }
        whole = whole * step + part * step / scale;
        part = part * step % scale;
    }
    const double number =
        static_cast<double>(whole) + static_cast<double>(part) / static_cast<double>(scale);
    return TimeReading{text.negative ? -number : number, text.negative ? -whole : whole, unit};
}

// Reads any other number as a double. These have more digits than a time in 64 bits can use, so
// rounding them changes nothing visible.
std::optional<TimeReading> ReadRounded(const NumberText& text, int unit) noexcept {
    double number = 0;
    const char* end = text.digits.data() + text.digits.size();
    const auto read = std::from_chars(text.digits.data(), end, number, std::chars_format::fixed);
    if (read.ec != std::errc()) {
        if (!text.whole.empty()) {
            return std::nullopt;  // too large for a double
        }
        number = 0;  // too small for one
    }
    for (; number != std::trunc(number) && unit > 0; --unit) {
        number *= static_cast<double>(kTimeUnits[static_cast<unsigned>(unit) - 1].per_next);
    }
    number = text.negative ? -number : number;
    return TimeReading{number, ToInt64(number), unit};
}

bool InRange(const TimeReading& time) noexcept {
    const unsigned unit = time.unit < 0 ? kBaseUnit : static_cast<unsigned>(time.unit);
    if (unit < kBaseUnit) {
        return std::abs(time.number) <= kMaxBaseUnits * static_cast<double>(UnitRatio(unit, 1));
    }
    return time.whole <= kMaxWhole[unit] && time.whole >= -kMaxWhole[unit];
}

// Returns whether the digits fit into 64 bits and can be read exactly. A fraction of the smallest
// unit, or without a unit, cannot become whole and is read as a double. Three digits of room are
// needed for the factor 1000 to the next unit.
bool IsExact(const NumberText& text, int unit) noexcept {
    if (!text.fraction.empty()) {
        return unit > 0 && text.whole.size() <= kExactDigits &&
               text.fraction.size() <= kExactDigits - 3;
    }
    return text.whole.size() <= kExactDigits ||
           (text.whole.size() == kExactDigits + 1 && text.whole <= "9223372036854775807");
}

// Reads a text of a few digits and nothing else, which most times are: skipping the decimal
// arithmetic for them makes reading formulas noticeably faster.
std::optional<std::int64_t> PlainDigits(std::string_view text) noexcept {
    if (text.empty() || text.size() > kExactDigits ||
        !std::all_of(text.begin(), text.end(), platform::IsDigit)) {
        return std::nullopt;
    }
    return DigitsToInt(text);
}

std::optional<TimeReading> ReadPlain(std::int64_t number, int unit) noexcept {
    const TimeReading out{static_cast<double>(number), number, unit};
    return InRange(out) ? std::optional(out) : std::nullopt;
}

std::optional<TimeReading> ReadNumber(const NumberText& number, int unit) noexcept {
    std::optional<TimeReading> out;
    if (IsExact(number, unit)) {
        out = ReadExact(number, unit);
    }
    if (!out) {
        out = ReadRounded(number, unit);
    }
    return out && InRange(*out) ? out : std::nullopt;
}

template <class T>
void AppendAny(std::string& out, T value) {
    char digits[24];
    out.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
}

}  // namespace

int FindTimeUnit(std::string_view name) noexcept {
    const auto row = std::find_if(
        kTimeUnits.begin(), kTimeUnits.end(),
        [name](const TimeUnitRow& unit) { return platform::EqualNoCase(unit.name, name); });
    return row == kTimeUnits.end() ? -1 : static_cast<int>(row - kTimeUnits.begin());
}

std::optional<TimeReading> ReadTime(std::string_view text, std::string_view unit) noexcept {
    if (const auto digits = PlainDigits(text); digits && unit.empty()) {
        return ReadPlain(*digits, -1);
    }
    const std::optional<NumberText> number = SplitNumber(text);
    if (!number || (!number->rest.empty() && !unit.empty())) {
        return std::nullopt;
    }
    const std::string_view name = number->rest.empty() ? unit : number->rest;
    const int id = name.empty() ? -1 : FindTimeUnit(name);
    return id < 0 && !name.empty() ? std::nullopt : ReadNumber(*number, id);
}

std::optional<TimeReading> ReadTimeIn(std::string_view text, int unit) noexcept {
    if (const auto digits = PlainDigits(text)) {
        return ReadPlain(*digits, unit);
    }
    const std::optional<NumberText> number = SplitNumber(text);
    return number && number->rest.empty() ? ReadNumber(*number, unit) : std::nullopt;
}

std::size_t NumberLength(std::string_view text) noexcept {
    const std::optional<NumberText> number = SplitNumber(text);
    return number ? text.size() - number->rest.size() : 0;
}

void ScaleWhole(std::int64_t& value, unsigned& unit) noexcept {
    constexpr unsigned kSecond = 5;
    while (value != 0 && unit < kSecond && value % 1000 == 0) {
        value /= 1000;
        ++unit;
    }
    while (value != 0 && unit >= kSecond && unit + 1 < kTimeUnits.size() && value % 60 == 0) {
        value /= 60;
        ++unit;
    }
}

void AppendNumber(std::string& out, std::int64_t value) {
    AppendAny(out, value);
}
void AppendNumber(std::string& out, std::uint64_t value) {
    AppendAny(out, value);
}

}  // namespace corv::util
