#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

// Text records cut at a separator by the rules of strtok: runs of separators count as one, so an
// empty field is never seen. Numbers are read by the rules of atoi and atof in the C locale.
namespace corv::util {

class FieldReader {
public:
    FieldReader(std::string_view text, char separator) noexcept
        : rest_(text), separator_(separator) {}

    // The next field, nothing at the end of the record.
    std::optional<std::string_view> Next() noexcept;

private:
    std::string_view rest_;
    char separator_;
};

// The leading number of a text, 0 when there is none; past the range of the result its end.
std::int64_t LeadingInteger(std::string_view text) noexcept;
int LeadingInt(std::string_view text) noexcept;
double LeadingReal(std::string_view text) noexcept;

}  // namespace corv::util
