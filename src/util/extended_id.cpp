#include "corv/util/extended_id.h"

#include <algorithm>

const char* SkipExtendedID(const char* name) noexcept {
    if (name == nullptr || *name != '\\') {
        return name;
    }
    const char* at = name + 1;
    for (; *at != '\0'; ++at) {
        if (*at != '\\') {
            continue;
        }
        if (at[1] != '\\') {
            return at + 1;
        }
        ++at;  // the second one of a pair
    }
    return at;
}

namespace corv {
namespace {

bool IsSeparator(char c, char separator) noexcept {
    return c == '.' || c == '/' || c == separator;
}

// Returns whether the name may end where this text begins.
bool EndsIn(std::string_view rest, char separator) noexcept {
    return rest.empty() || IsSeparator(rest[0], separator) || rest[0] == '(' || rest[0] == '[';
}

// Returns whether the first blank of a text is followed by a separator and another level.
bool EndsAtBlank(std::string_view text, std::size_t blank, char separator) noexcept {
    return blank > 1 && blank + 2 < text.size() && IsSeparator(text[blank + 1], separator);
}

// Returns the length up to the backslash that closes a name, 0 if none does.
std::size_t ClosedLength(std::string_view text, std::size_t blank, char separator) noexcept {
    for (std::size_t at = 1; at < text.size(); ++at) {
        if (text[at] != '\\') {
            continue;
        }
        if (at == blank + 1 && EndsAtBlank(text, blank, separator)) {
            return 0;  // it is the separator after an escaped scope
        }
        if (text.substr(at + 1).starts_with('\\')) {
            ++at;
            continue;
        }
        return at > 1 && EndsIn(text.substr(at + 1), separator) ? at + 1 : 0;
    }
    return 0;
}

}  // namespace

std::size_t EscapedNameLength(std::string_view text, char separator) noexcept {
    if (!text.starts_with('\\')) {
        return 0;
    }
    const std::size_t blank = std::min(text.find(' '), text.size());
    if (const std::size_t length = ClosedLength(text, blank, separator)) {
        return length;
    }
    return EndsAtBlank(text, blank, separator) ? blank + 1 : text.size();
}

}  // namespace corv
