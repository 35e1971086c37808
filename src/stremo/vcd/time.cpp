#include "stremo/vcd/time.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <numeric>

#include "platform/ascii.h"
#include "util/saturate.h"

namespace corv::vcd {
namespace {

struct Unit {
    std::string_view name;
    int exponent;  // of ten, in picoseconds
};
constexpr Unit kUnits[] = {{"fs", -3}, {"ps", 0}, {"ns", 3},   {"us", 6},
                           {"ms", 9},  {"s", 12}, {"sec", 12}, {"as", -6}};

std::string_view Trimmed(std::string_view text) noexcept {
    while (!text.empty() && platform::IsSpace(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && platform::IsSpace(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

constexpr std::uint64_t PowerOfTen(int exponent) noexcept {
    std::uint64_t power = 1;
    for (; exponent > 0; --exponent) {
        power *= 10;
    }
    return power;
}

// A number with a fraction, as digits and an exponent of ten.
struct Decimal {
    std::uint64_t digits = 0;
    int exponent = 0;
};

std::optional<Decimal> ReadFraction(std::string_view text) noexcept {
    constexpr std::uint64_t kMostRead = 1'000'000'000'000'000;
    constexpr std::uint64_t kMost = 1'000'000;  // without the zeros at the end
    Decimal number;
    bool point = false;
    for (const char c : text) {
        if (c == '.' && !point) {
            point = true;
            continue;
        }
        if (!platform::IsDigit(c) || number.digits >= kMostRead || number.exponent < -9) {
            return std::nullopt;
        }
        number.digits = number.digits * 10 + static_cast<std::uint64_t>(c - '0');
        number.exponent -= point ? 1 : 0;
    }
    while (number.digits != 0 && number.digits % 10 == 0) {
        number.digits /= 10;
        ++number.exponent;
    }
    return number.digits != 0 && number.digits < kMost ? std::optional(number) : std::nullopt;
}

}  // namespace

std::optional<TimeScale> TimeScale::Read(std::string_view text) noexcept {
    text = Trimmed(text);
    const std::size_t length = std::min(text.find_first_not_of("0123456789."), text.size());
    const std::optional<Decimal> number = ReadFraction(text.substr(0, length));
    const std::string_view name = Trimmed(text.substr(length));
    for (const Unit& unit : kUnits) {
        if (!number || !platform::EqualNoCase(unit.name, name)) {
            continue;
        }
        const int exponent = number->exponent + unit.exponent;
        if (exponent > 12 || exponent < -12) {
            return std::nullopt;
        }
        // A fraction in lowest terms: its limits keep `time % divisor * factor` within 64 bits.
        const std::uint64_t factor = number->digits * PowerOfTen(exponent);
        const std::uint64_t divisor = PowerOfTen(-exponent);
        const std::uint64_t common = std::gcd(factor, divisor);
        return TimeScale(factor / common, divisor / common);
    }
    return std::nullopt;
}

std::int64_t TimeScale::ToPicoseconds(std::uint64_t time) const noexcept {
    constexpr auto kLast = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    std::uint64_t picoseconds = 0;
    if (divisor_ == 1) {
        picoseconds = util::SaturatingMultiply(time, factor_);
    } else {
        picoseconds = util::SaturatingMultiply(time / divisor_, factor_);
        const std::uint64_t rest = time % divisor_ * factor_ / divisor_;
        picoseconds = picoseconds > kLast - rest ? kLast : picoseconds + rest;
    }
    return static_cast<std::int64_t>(std::min(picoseconds, kLast));
}

std::optional<std::uint64_t> ReadDecimal(std::string_view digits) noexcept {
    std::uint64_t number = 0;
    const char* const end = digits.data() + digits.size();
    const auto [at, error] = std::from_chars(digits.data(), end, number);
    return error == std::errc() && at == end ? std::optional(number) : std::nullopt;
}

}  // namespace corv::vcd
