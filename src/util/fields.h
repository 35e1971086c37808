#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

// Text records split at a separator by the rules of strtok: runs of separators count as one, so
// there are no empty fields. Numbers are read by the rules of atoi and atof in the C locale.
namespace corv::util {

class FieldReader {
public:
    FieldReader(std::string_view text, char separator) noexcept
        : rest_(text), separator_(separator) {}

    // Returns the next field, nullopt at the end of the record.
    std::optional<std::string_view> Next() noexcept;

private:
    std::string_view rest_;
    char separator_;
};

// Return the leading number of a text, 0 if there is none. A number past the range of the result
// becomes its nearer end.
std::int64_t LeadingInteger(std::string_view text) noexcept;
int LeadingInt(std::string_view text) noexcept;
double LeadingReal(std::string_view text) noexcept;

}  // namespace corv::util
