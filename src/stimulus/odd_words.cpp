#include "stimulus/odd_words.h"

#include <algorithm>

#include "platform/ascii.h"

namespace corv::stimulus {
namespace {

constexpr bool IsOfName(char c) noexcept {
    return platform::IsLetter(c) || platform::IsDigit(c) || c == '_' || c == '.' || c == ':';
}

}  // namespace

std::string_view NameOddSpace(std::string_view word) noexcept {
    if (word.find('\r') != std::string_view::npos) {
        return "carriage return";
    }
    if (word.find_first_of("\v\f") != std::string_view::npos) {
        return "form feed or vertical tab";
    }
    return word.find("\xc2\xa0") != std::string_view::npos ? "non-breaking space"
                                                           : std::string_view();
}

std::string_view NameBefore(std::string_view value) noexcept {
    const auto length = static_cast<std::size_t>(
        std::find_if_not(value.begin(), value.end(), IsOfName) - value.begin());
    const bool named =
        length > 0 && platform::IsLetter(value[0]) && length < value.size() && value[length] == '=';
    return value.substr(0, named ? length + 1 : 0);
}

}  // namespace corv::stimulus
