#include "host/name_symbols.h"

#include "corv/signals/hierarchy_separator.h"

namespace corv::host {

char LowerCase(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool IsNameSeparator(char c) {
    return c == '.' || c == '/' || c == HierarchySeparator();
}

std::size_t ExtendedNameLength(std::string_view text, bool level_start) {
    if (!level_start || !text.starts_with('\\')) {
        return 0;
    }
    for (std::size_t at = 1; at < text.size(); ++at) {
        if (text[at] == '\\') {
            if (at + 1 < text.size() && text[at + 1] == '\\') {
                ++at;
                continue;
            }
            return at > 1 ? at + 1 : 0;
        }
    }
    return 0;
}

std::string_view WithoutLeadingSeparators(std::string_view text) {
    while (!text.empty() && IsNameSeparator(text[0]) && ExtendedNameLength(text, true) == 0) {
        text.remove_prefix(1);
    }
    return text;
}

}  // namespace corv::host
