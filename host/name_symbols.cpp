#include "host/name_symbols.h"

#include "corv/signals/hierarchy_separator.h"
#include "corv/util/extended_id.h"

namespace corv::host {

char LowerCase(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool IsNameSeparator(char c) {
    return c == '.' || c == '/' || c == HierarchySeparator();
}

std::size_t ExtendedNameLength(std::string_view text, bool level_start) {
    return level_start ? EscapedNameLength(text, HierarchySeparator()) : 0;
}

std::string_view WithoutLeadingSeparators(std::string_view text) {
    while (!text.empty() && IsNameSeparator(text[0]) && ExtendedNameLength(text, true) == 0) {
        text.remove_prefix(1);
    }
    return text;
}

}  // namespace corv::host
