#include "stimulus/unit_suggestion.h"

#include <algorithm>
#include <array>

#include "platform/ascii.h"

namespace corv::stimulus {
namespace {

struct Alias {
    std::string_view written;
    std::string_view unit;
};

constexpr std::array<Alias, 15> kAliases{{
    {"s", "sec"},
    {"secs", "sec"},
    {"second", "sec"},
    {"seconds", "sec"},
    {"fsec", "fs"},
    {"psec", "ps"},
    {"nsec", "ns"},
    {"usec", "us"},
    {"msec", "ms"},
    {"\xc2\xb5s", "us"},  // the micro sign, the Greek letter, and the sign in Latin-1
    {"\xce\xbcs", "us"},
    {"\xb5s", "us"},
    {"mins", "min"},
    {"h", "hr"},
    {"hour", "hr"},
}};

// The likeliest first.
constexpr std::array<std::string_view, 8> kUnits{"ns", "ps", "us", "ms", "fs", "sec", "min", "hr"};

// Returns whether two short words differ by one changed, missing, added or swapped letter.
bool IsNear(std::string_view word, std::string_view unit) noexcept {
    if (word.size() > unit.size() + 1 || unit.size() > word.size() + 1) {
        return false;
    }
    const auto same = [](char a, char b) { return platform::Lower(a) == b; };
    const auto [at, unit_at] =
        std::mismatch(word.begin(), word.end(), unit.begin(), unit.end(), same);
    const std::string_view rest(word.data() + (at - word.begin()),
                                static_cast<std::size_t>(word.end() - at));
    const std::string_view unit_rest(unit.data() + (unit_at - unit.begin()),
                                     static_cast<std::size_t>(unit.end() - unit_at));
    const auto tail = [](std::string_view text) { return text.substr(text.empty() ? 0 : 1); };
    return platform::EqualNoCase(tail(rest), tail(unit_rest)) ||
           platform::EqualNoCase(rest, tail(unit_rest)) ||
           platform::EqualNoCase(tail(rest), unit_rest) ||
           (rest.size() == 2 && unit_rest.size() == 2 && same(rest[0], unit_rest[1]) &&
            same(rest[1], unit_rest[0]));
}

}  // namespace

std::string_view NearestUnit(std::string_view word) noexcept {
    for (const Alias& alias : kAliases) {
        if (platform::EqualNoCase(alias.written, word)) {
            return alias.unit;
        }
    }
    const auto near = std::find_if(kUnits.begin(), kUnits.end(),
                                   [word](std::string_view unit) { return IsNear(word, unit); });
    return near == kUnits.end() || word.size() < 2 ? std::string_view() : *near;
}

}  // namespace corv::stimulus
