#include "stimulus/unit_suggestion.h"

#include <algorithm>
#include <array>

#include "platform/ascii.h"
#include "util/suggest.h"

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

}  // namespace

std::string_view NearestUnit(std::string_view word) noexcept {
    for (const Alias& alias : kAliases) {
        if (platform::EqualNoCase(alias.written, word)) {
            return alias.unit;
        }
    }
    const auto near = std::find_if(kUnits.begin(), kUnits.end(), [word](std::string_view unit) {
        return util::EditDistance(word, unit) <= 1;
    });
    return near == kUnits.end() || word.size() < 2 ? std::string_view() : *near;
}

}  // namespace corv::stimulus
