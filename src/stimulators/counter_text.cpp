// Reads and writes the texts of counters (docs/formats/counters.md).

#include "stimulators/counter_text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>

#include "corv/stimulus/time_unit.h"
#include "corv/util/dec_converter.h"
#include "platform/ascii.h"
#include "util/time_text.h"

namespace corv::stimulators {
namespace {

void AppendPair(std::string& out, std::string_view key, std::string_view value) {
    out += '\\';
    out += key;
    out += '\\';
    out += value;
}

void AppendPair(std::string& out, std::string_view key, int value) {
    AppendPair(out, key, std::string_view());
    util::AppendNumber(out, std::int64_t{value});
}

}  // namespace

std::optional<std::string_view> CounterReader::Next() noexcept {
    const auto word = fields_.Next();
    at_ = word ? *word : text_.substr(text_.size());
    return word;
}

bool CounterReader::ReadWord(std::string_view expected) noexcept {
    const auto word = Next();
    return word && platform::EqualNoCase(*word, expected);
}

std::optional<std::string_view> CounterReader::Value(std::string_view key) noexcept {
    return ReadWord(key) ? Next() : std::nullopt;
}

std::optional<std::int64_t> ReadCountPeriod(std::string_view text) noexcept {
    const auto time = util::ReadTime(text.substr(0, kPeriodRoom - 1));
    if (!time) {
        return std::nullopt;
    }
    const unsigned unit = time->unit < 0 ? util::kBaseUnit : static_cast<unsigned>(time->unit);
    return ConvertTime(time->whole, unit, util::kBaseUnit);
}

std::optional<std::int64_t> ReadCountNumber(std::string_view text, int radix) noexcept {
    std::array<char, kNumberRoom> zero_ended{};
    text.substr(0, kNumberRoom - 1).copy(zero_ended.data(), kNumberRoom - 1);
    std::int64_t number = 0;
    return c_decConverter().Convert(zero_ended.data(), radix, &number) != 0 ? std::optional(number)
                                                                            : std::nullopt;
}

std::optional<CounterReference> ReadCounterReference(std::string_view text) noexcept {
    CounterReader reader(text);
    if (!reader.Begin()) {
        return std::nullopt;
    }
    const auto wire = reader.Value("wire");
    const auto handle = wire ? reader.Value("handle") : std::nullopt;
    if (!handle) {
        return std::nullopt;
    }
    return CounterReference{util::LeadingInt(*wire), util::LeadingInt(*handle)};
}

std::string WriteCounterReference(CounterReference reference) {
    std::string out = "\\counter";
    AppendPair(out, "wire", reference.wire);
    AppendPair(out, "handle", reference.handle);
    return out;
}

std::string WriteCounterText(const CounterFields& fields) {
    std::string out = "\\counter";
    AppendPair(out, "TYPE", fields.type);
    AppendPair(out, "DIR", fields.dir);
    AppendPair(out, "RADIX", fields.radix);
    AppendPair(out, "START", fields.start);
    AppendPair(out, "INC", fields.increment);
    AppendPair(out, "PERIOD", fields.period);
    AppendPair(out, "REV", fields.reverse ? 1 : 0);
    return out;
}

}  // namespace corv::stimulators
