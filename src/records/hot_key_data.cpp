#include "corv/records/hot_key_data.h"

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <utility>

#include "platform/guard.h"
#include "util/fields.h"
#include "util/time_text.h"

namespace {

constexpr char kSeparator = '/';

// Keys have 32 bits and may be written with or without a sign. A number that fits in neither way
// becomes the nearest signed number.
std::uint32_t ReadKey(std::string_view text) noexcept {
    const std::int64_t number = corv::util::LeadingInteger(text);
    const bool fits = number >= 0 && number <= std::numeric_limits<std::uint32_t>::max();
    return static_cast<std::uint32_t>(fits ? number : corv::util::LeadingInt(text));
}

}  // namespace

bool ParseHotKeyData(const char* text, unsigned long* key, CString& result) noexcept {
    corv::util::FieldReader fields(text != nullptr ? text : "", kSeparator);
    const auto number = fields.Next();
    if (number && key != nullptr) {
        *key = ReadKey(*number);
    }
    const auto hot_key = fields.Next();
    CString found;  // the text may be the result's own content
    const bool read = hot_key && corv::platform::Done([&] { found = CString(*hot_key); });
    result = std::move(found);
    return read;
}

void MergeHotKeyData(unsigned long key, const char* text, CString& result) noexcept {
    const auto number = static_cast<std::int32_t>(static_cast<std::uint32_t>(key));
    result = corv::platform::Guarded(CString(), [&] {
        std::string merged;
        corv::util::AppendNumber(merged, std::int64_t{number});
        merged += kSeparator;
        return CString(merged += text != nullptr ? text : "");
    });
}
