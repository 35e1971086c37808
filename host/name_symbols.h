#pragma once

#include <cstddef>
#include <string_view>

// Signal names, character by character.
namespace corv::host {

char LowerCase(char c);
bool IsNameSeparator(char c);

// How many characters the extended name at the front of the text has, 0 when there is none. A
// backslash begins one at the start of a level when another one closes it; the separator may be a
// backslash too.
std::size_t ExtendedNameLength(std::string_view text, bool level_start);

// The text without separators in front.
std::string_view WithoutLeadingSeparators(std::string_view text);

// Calls `take` with each character and whether it is part of an extended name. All separators
// outside are ".", square brackets are round ones.
template <class Take>
void ForEachSymbol(std::string_view name, bool level_start, Take take) {
    while (!name.empty()) {
        const std::size_t length = ExtendedNameLength(name, level_start);
        for (const char c : name.substr(0, length)) {
            take(c, true);
        }
        name.remove_prefix(length);
        if (length > 0) {
            level_start = false;
            continue;
        }
        const char c = name[0];
        name.remove_prefix(1);
        level_start = IsNameSeparator(c);
        take(level_start ? '.' : c == '[' ? '(' : c == ']' ? ')' : c, false);
    }
}

}  // namespace corv::host
