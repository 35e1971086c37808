// Writes and reads values of physical types, such as 15 ns. The recording stores only a number of
// the smallest unit; the units come from the type's name or from the property Units.

#include "host/physical_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

#include "corv/stimulus/time_unit.h"
#include "corv/util/time_text.h"

namespace corv::host {
namespace {

using Limits = std::numeric_limits<std::int64_t>;

constexpr unsigned kFemtosecond = 0;

std::string Lower(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    return lower;
}

std::string_view Trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(' ');
    return first == std::string_view::npos
               ? std::string_view()
               : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

template <class Number>
bool ReadWhole(std::string_view text, Number& number) {
    const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
    return !text.empty() && read.ec == std::errc() && read.ptr == text.data() + text.size();
}

// Returns a decimal number times a size if that is whole and fits.
std::optional<std::int64_t> Times(std::string_view number, std::int64_t size) {
    const std::size_t point = std::min(number.find('.'), number.size());
    std::string digits(number.substr(0, point));
    for (const char c : number.substr(std::min(point + 1, number.size()))) {
        // 1.5 us is 15 tenths of a microsecond, and the tenth has to be a whole number as well
        if (size % 10 != 0) {
            return std::nullopt;
        }
        size /= 10;
        digits += c;
    }
    std::int64_t whole = 0;
    const bool fits =
        ReadWhole(digits, whole) && whole <= Limits::max() / size && whole >= Limits::min() / size;
    return fits ? std::optional(whole * size) : std::nullopt;
}

}  // namespace

PhysicalUnits UnitsOfType(std::string_view type_name) {
    const std::string name = Lower(type_name.substr(type_name.rfind('.') + 1));
    PhysicalUnits units;
    if (name == "time" || name == "delay_length") {
        for (const std::string_view unit : TimeUnitNames()) {
            const auto id = static_cast<unsigned>(units.size());
            units.push_back({std::string(unit), ConvertTime(1, id, kFemtosecond)});
        }
    }
    return units;
}

PhysicalUnits ReadUnits(std::string_view text) {
    PhysicalUnits units;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(','), text.size());
        const std::string_view part = text.substr(0, end);
        const std::size_t equals = part.find('=');
        std::int64_t size = 0;
        if (equals == std::string_view::npos ||
            !ReadWhole(Trimmed(part.substr(equals + 1)), size) || size < 1 ||
            // the first unit is the one that values are counted in
            (units.empty() && size != 1)) {
            return {};
        }
        units.push_back({std::string(Trimmed(part.substr(0, equals))), size});
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    std::stable_sort(units.begin(), units.end(),
                     [](const PhysicalUnit& a, const PhysicalUnit& b) { return a.size < b.size; });
    return units;
}

std::optional<std::string> PhysicalText(double number, const PhysicalUnits& units) {
    // 2^63, the first number that does not fit
    constexpr double kEnd = 9223372036854775808.0;
    if (units.empty() || !(number >= -kEnd && number < kEnd) || number != std::trunc(number)) {
        return std::nullopt;
    }
    const auto whole = static_cast<std::int64_t>(number);
    // 0 is whole in every unit, so it takes the smallest
    std::size_t unit = whole == 0 ? 0 : units.size() - 1;
    while (unit > 0 && whole % units[unit].size != 0) {
        --unit;
    }
    return std::to_string(whole / units[unit].size) + units[unit].name;
}

std::optional<std::int64_t> ReadPhysical(std::string_view text, const PhysicalUnits& units) {
    text = Trimmed(text);
    const std::size_t end = std::min(text.find_first_not_of("+-0123456789."), text.size());
    const std::string name = Lower(Trimmed(text.substr(end)));
    for (const PhysicalUnit& unit : units) {
        if (Lower(unit.name) == name) {
            const std::string_view number = text.substr(0, end);
            return Times(number.substr(number.starts_with('+') ? 1 : 0), unit.size);
        }
    }
    return std::nullopt;
}

}  // namespace corv::host
