#include "util/time_text.h"

#include <algorithm>
#include <charconv>

#include "platform/guard.h"
#include "util/quote.h"
#include "util/saturate.h"
#include "util/suggest.h"
#include "util/unit_suggestion.h"
#include "util/words.h"

namespace corv::util {
namespace {

constexpr int kMostDecimals = 15;
constexpr std::string_view kBlanks = " \t\r\n";

// Returns the part of a unit that the digits after the point are, nullopt if it is not whole. From
// the last digit on each step is a tenth of a whole number, or the sum is not whole either.
std::optional<std::int64_t> PartOf(std::string_view fraction, std::int64_t size) noexcept {
    std::int64_t part = 0;
    for (std::size_t i = fraction.size(); i-- > 0;) {
        part += (fraction[i] - '0') * size;
        if (part % 10 != 0) {
            return std::nullopt;
        }
        part /= 10;
    }
    return part;
}

std::int64_t SaturatedDigits(std::string_view digits) noexcept {
    std::int64_t number = 0;
    const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return read.ec == std::errc::result_out_of_range ? Int64Limits::max() : number;
}

// Returns nullopt for a time that is not whole, and the end of 64 bits for one past them.
std::optional<std::int64_t> WholePicoseconds(NumberText number, unsigned unit) noexcept {
    constexpr std::string_view kThousand = "000";
    if (unit < kBaseUnit) {
        if (!number.fraction.empty() ||
            !(number.whole.empty() || number.whole.ends_with(kThousand))) {
            return std::nullopt;
        }
        number.whole.remove_suffix(std::min(number.whole.size(), kThousand.size()));
        unit = kBaseUnit;
    }
    const std::int64_t size = UnitRatio(kBaseUnit, unit);
    const auto part = PartOf(number.fraction, size);
    if (!part) {
        return std::nullopt;
    }
    const std::int64_t whole = SaturatedDigits(number.whole);
    const std::int64_t time = SaturatingAdd(SaturatingMultiply(whole, size), *part);
    return number.negative ? -time : time;
}

// Returns what is wrong with a time that is part of a text.
Problem Describe(std::string_view text, std::string_view time, bool is_whole) {
    TimeComplaint complaint =
        is_whole ? ComplainOfTime(time)
                 : TimeComplaint{time, Quote(time) + " is not a whole number of picoseconds",
                                 "; write a time no finer than 1ps"};
    const std::size_t position =
        time.empty() ? 0 : static_cast<std::size_t>(complaint.place.data() - text.data());
    return {position, complaint.place.size(), complaint.reason + complaint.remedy};
}

// Returns the largest unit, from ps on, in which the time is whole.
unsigned LargestUnit(std::int64_t time) noexcept {
    unsigned unit = kBaseUnit;
    while (time != 0 && kTimeUnits[unit].per_next != 0 && time % kTimeUnits[unit].per_next == 0) {
        time /= kTimeUnits[unit++].per_next;
    }
    return unit;
}

void AppendDecimal(std::string& out, std::uint64_t time, std::uint64_t size) {
    AppendNumber(out, time / size);
    std::uint64_t rest = time % size;
    for (int decimals = 0; rest != 0 && decimals < kMostDecimals; ++decimals) {
        out += decimals == 0 ? "." : "";
        rest *= 10;
        out += static_cast<char>('0' + rest / size);
        rest %= size;
    }
}

std::string TimeInUnit(std::int64_t time, unsigned unit) {
    const auto bits = static_cast<std::uint64_t>(time);
    std::string out(time < 0 ? "-" : "");
    if (unit < kBaseUnit) {
        AppendNumber(out, time < 0 ? 0 - bits : bits);
        out += time == 0 ? "" : "000";
    } else {
        AppendDecimal(out, time < 0 ? 0 - bits : bits,
                      static_cast<std::uint64_t>(UnitRatio(kBaseUnit, unit)));
    }
    return out.append(kTimeUnits[unit].name);
}

// "fs, ps, ... and hr".
std::string ListOfUnits() {
    std::string list(kTimeUnits.front().name);
    for (std::size_t i = 1; i < kTimeUnits.size(); ++i) {
        list.append(i + 1 < kTimeUnits.size() ? ", " : " and ").append(kTimeUnits[i].name);
    }
    return list;
}

template <class T>
void AppendAny(std::string& out, T value) {
    char digits[24];
    out.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
}

}  // namespace

TimeComplaint ComplainOfTime(std::string_view text) {
    const std::string_view unit = SkipFront(text.substr(NumberLength(text)), kBlanks);
    if (unit.size() == text.size()) {
        return {text, text.empty() ? "there is no time" : Quote(text) + " is not a time",
                "; write a number with an optional unit, such as `10ns`"};
    }
    if (!unit.empty() && FindTimeUnit(unit) < 0) {
        return {unit, "unknown unit " + Quote(unit),
                DidYouMean(NearestUnit(unit), "; the units are " + ListOfUnits())};
    }
    return {text, "the time " + Quote(text) + " is past the range of 9.2e18ps", {}};
}

void AppendTime(std::string& out, std::int64_t picoseconds) {
    const unsigned unit = LargestUnit(picoseconds);
    AppendNumber(out, picoseconds / UnitRatio(kBaseUnit, unit));
    out += kTimeUnits[unit].name;
}

void AppendNumber(std::string& out, std::int64_t value) {
    AppendAny(out, value);
}
void AppendNumber(std::string& out, std::uint64_t value) {
    AppendAny(out, value);
}

}  // namespace corv::util

namespace corv {

std::span<const std::string_view> TimeUnitNames() noexcept {
    static constexpr auto kNames = [] {
        std::array<std::string_view, util::kTimeUnits.size()> names;
        std::transform(util::kTimeUnits.begin(), util::kTimeUnits.end(), names.begin(),
                       [](const util::TimeUnitRow& unit) { return unit.name; });
        return names;
    }();
    return kNames;
}

std::span<const std::string_view> FrequencyUnitNames() noexcept {
    return util::kFrequencyUnits;
}

std::string FormatTime(std::int64_t picoseconds) noexcept {
    return platform::Guarded(std::string(), [&] {
        std::string out;
        util::AppendTime(out, picoseconds);
        return out;
    });
}

std::string FormatTime(std::int64_t picoseconds, TimeUnit unit) noexcept {
    const auto id = static_cast<unsigned>(unit);
    return platform::Guarded(std::string(), [&] {
        return id < util::kTimeUnits.size() ? util::TimeInUnit(picoseconds, id) : std::string();
    });
}

std::optional<std::int64_t> ParseTime(std::string_view text, Problem* problem) noexcept {
    const std::string_view time = util::TrimEnds(text, util::kBlanks);
    const auto number = util::SplitNumber(time);
    const std::string_view name =
        number ? util::SkipFront(number->rest, util::kBlanks) : std::string_view();
    const int unit = name.empty() ? static_cast<int>(util::kBaseUnit) : util::FindTimeUnit(name);
    const bool is_read = number && unit >= 0;
    const auto picoseconds =
        is_read ? util::WholePicoseconds(*number, static_cast<unsigned>(unit)) : std::nullopt;
    if (picoseconds && *picoseconds <= kMaxTime && *picoseconds >= -kMaxTime) {
        return picoseconds;
    }
    if (problem) {
        // this sentence is short enough for std::string not to allocate memory
        Problem found{0, 0, "out of memory"};
        const bool is_whole = !is_read || picoseconds;
        platform::Done([&] { found = util::Describe(text, time, is_whole); });
        *problem = std::move(found);
    }
    return std::nullopt;
}

}  // namespace corv
