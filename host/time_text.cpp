#include "host/time_text.h"

#include <charconv>
#include <cmath>

#include "corv/stimulus/check_formula.h"
#include "corv/stimulus/time_unit.h"
#include "corv/util/time_units.h"

namespace corv::host {
namespace {

constexpr unsigned kLargestUnit = 7;
constexpr int kMaxDecimals = 15;
constexpr std::string_view kBlanks = " \t\r\n";

// The text without blanks around it and between number and unit.
std::string CloseUp(std::string_view text) {
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) {
        return {};
    }
    text = text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
    const std::size_t number = std::min(text.find_first_of(kBlanks), text.size());
    const std::size_t unit = std::min(text.find_first_not_of(kBlanks, number), text.size());
    return std::string(text.substr(0, number)).append(text.substr(unit));
}

// Inside a formula an unreadable time is taken as 0; here it is refused.
std::string WithoutConsequence(std::string sentence) {
    constexpr std::string_view kConsequence = ", and counts as 0";
    const std::size_t at = sentence.find(kConsequence);
    return at == std::string::npos ? sentence : sentence.erase(at, kConsequence.size());
}

// The library's formula check knows best what a time lacks; it is asked about a value at that time.
std::string Complaint(const std::string& text) {
    if (!text.empty() && text.find_first_of(" ,'\"(@") == std::string::npos) {
        for (const Problem& problem : CheckFormula(("0 " + text).c_str())) {
            if (problem.severity == Problem::Severity::Error) {
                return WithoutConsequence(problem.sentence);
            }
        }
    }
    return "`" + text + "` is not a time; write a number with an optional unit, such as `10ns`";
}

// Whole numbers are read as such: a double holds only 53 bits of them.
std::optional<std::int64_t> WholePicoseconds(const std::string& text, double number,
                                             unsigned unit) {
    std::int64_t whole = static_cast<std::int64_t>(number);
    if (text.find('.') == std::string::npos) {
        const std::size_t digits = text.find_first_of("0123456789");
        std::from_chars(text.data() + digits, text.data() + text.size(), whole);
    } else if (number != std::trunc(number)) {
        return std::nullopt;
    }
    const std::int64_t time = ConvertTime(whole, unit, kPicosecond);
    return unit == 0 && ConvertTime(time, kPicosecond, 0) != whole ? std::nullopt
                                                                   : std::optional(time);
}

}  // namespace

WrittenTime ReadWrittenTime(std::string_view text) {
    const std::string closed = CloseUp(text);
    WrittenTime time;
    int unit = -1;
    if (closed.find('\0') != std::string::npos ||
        !TextToTime(closed.c_str(), &time.number, &unit)) {
        time.problem = Complaint(closed);
    } else if (time.number < 0) {
        time.problem = "`" + closed + "` lies before 0";
    }
    time.unit = unit < 0 ? kPicosecond : static_cast<unsigned>(unit);
    return time;
}

TimeReading ReadTime(std::string_view text) {
    const WrittenTime written = ReadWrittenTime(text);
    if (!written.problem.empty()) {
        return {std::nullopt, written.problem};
    }
    const std::string closed = CloseUp(text);
    if (const auto time = WholePicoseconds(closed, written.number, written.unit)) {
        return {time, {}};
    }
    return {std::nullopt, "`" + closed + "` is not a whole number of picoseconds"};
}

std::int64_t UnitSize(unsigned unit) {
    return ConvertTime(1, unit, kPicosecond);
}

unsigned WholeUnit(std::int64_t time) {
    unsigned unit = time == 0 ? kPicosecond : kLargestUnit;
    while (unit > kPicosecond && time % UnitSize(unit) != 0) {
        --unit;
    }
    return unit;
}

std::string TimeText(std::int64_t time) {
    return TimeText(time, WholeUnit(time));
}

std::string TimeText(std::int64_t time, unsigned unit) {
    if (unit < kPicosecond) {
        return std::to_string(time) + (time == 0 ? "" : "000") + UnitNameFromID(unit);
    }
    const std::int64_t size = UnitSize(unit);
    std::string text = std::to_string(time / size);
    std::int64_t rest = time % size;
    for (int decimals = 0; rest != 0 && decimals < kMaxDecimals; ++decimals) {
        text += decimals == 0 ? "." : "";
        rest *= 10;
        text += static_cast<char>('0' + rest / size);
        rest %= size;
    }
    return text + UnitNameFromID(unit);
}

}  // namespace corv::host
