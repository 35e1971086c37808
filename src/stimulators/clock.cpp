#include "corv/stimulators/clock.h"

#include <charconv>
#include <string>
#include <string_view>

#include "corv/util/time_units.h"
#include "platform/guard.h"
#include "util/fields.h"
#include "util/saturate.h"
#include "util/time_text.h"

namespace {

using corv::util::AppendNumber;

// Appends a number as "%f" writes it in the C locale, whatever the host's locale is.
void AppendFixed(std::string& out, double value) {
    char digits[400];  // the largest double has 309 digits before the point
    out.append(
        digits,
        std::to_chars(digits, digits + sizeof digits, value, std::chars_format::fixed, 6).ptr);
}

}  // namespace

CClock::~CClock() = default;

void CClock::StreamOut(CString& record) const noexcept {
    const bool written = corv::platform::Done([&] {
        std::string out;
        AppendFixed(out, rate_value_);
        // the record has only the low 32 bits of the offset
        const auto offset = static_cast<std::int32_t>(static_cast<std::uint32_t>(rate_offset_));
        for (const std::int64_t field :
             {std::int64_t{rate_unit_}, std::int64_t{rate_type_}, std::int64_t{offset},
              std::int64_t{rate_cycle_}, std::int64_t{start_low_}}) {
            out += ';';
            AppendNumber(out, field);
        }
        record = CString(std::move(out));
    });
    if (!written) {
        record.Empty();
    }
}

bool CClock::StreamIn(const char* record) noexcept {
    corv::util::FieldReader fields(record ? record : "", ';');
    const auto rate_value = fields.Next();
    if (!rate_value) {
        return false;
    }
    rate_value_ = corv::util::LeadingReal(*rate_value);
    // The other fields are whole numbers, each stored at once: those before a missing one stay.
    const auto read = [&fields](auto store) {
        const auto field = fields.Next();
        if (field) {
            store(corv::util::LeadingInteger(*field));
        }
        return field.has_value();
    };
    return read([this](std::int64_t n) { rate_unit_ = static_cast<std::uint8_t>(n); }) &&
           read([this](std::int64_t n) { rate_type_ = n != 0; }) &&
           read([this](std::int64_t n) { rate_offset_ = n; }) &&
           read([this](std::int64_t n) { rate_cycle_ = static_cast<std::uint8_t>(n); }) &&
           read([this](std::int64_t n) { start_low_ = static_cast<std::uint8_t>(n) != 0; });
}

bool CClock::GenerateFormula(CString& out, std::uint8_t target_unit,
                             std::int64_t* offset) const noexcept {
    const double period = rate_type_ ? ChangeTime(rate_value_, rate_unit_, target_unit)
                                     : PeriodFromFreq(rate_value_, rate_unit_, target_unit);
    double second_edge = rate_cycle_ * period * 0.01;
    std::int64_t first_edge = 0;
    if (offset) {
        *offset = rate_offset_;
    } else {
        first_edge = rate_offset_;
        second_edge += static_cast<double>(rate_offset_);
    }
    const bool written = corv::platform::Done([&] {
        std::string text(1, start_low_ ? '0' : '1');
        text += ' ';
        AppendNumber(text, first_edge);
        text += start_low_ ? ", 1 " : ", 0 ";
        AppendNumber(text, corv::util::ToInt64(second_edge));
        text += " -r ";
        AppendNumber(text, corv::util::ToInt64(period));
        out = CString(std::move(text));
    });
    if (!written) {
        out.Empty();
    }
    return true;
}
