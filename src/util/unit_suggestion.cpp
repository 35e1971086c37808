#include "util/unit_suggestion.h"

#include <array>

#include "platform/ascii.h"
#include "util/suggest.h"
#include "util/time_text.h"

namespace corv::util {
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

}  // namespace

std::string_view NearestUnit(std::string_view word) noexcept {
    for (const Alias& alias : kAliases) {
        if (platform::EqualNoCase(alias.written, word)) {
            return alias.unit;
        }
    }
    const TimeUnitRow* nearest = nullptr;
    for (const TimeUnitRow& unit : kTimeUnits) {
        if (word.size() > 1 && EditDistance(word, unit.name) <= 1 &&
            (!nearest || unit.guess < nearest->guess)) {
            nearest = &unit;
        }
    }
    return nearest ? nearest->name : std::string_view();
}

}  // namespace corv::util
