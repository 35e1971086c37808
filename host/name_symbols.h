#pragma once

#include <cstddef>
#include <string_view>

// Signal names, character by character.
namespace corv::host {

char LowerCase(char c);
bool IsNameSeparator(char c);

// Returns the length of the extended or escaped name at the front of the text, 0 if there is none
// or no level starts here (corv::EscapedNameLength).
std::size_t ExtendedNameLength(std::string_view text, bool level_start);

// Returns the text without leading separators.
std::string_view WithoutLeadingSeparators(std::string_view text);

// Calls `take` with each character and whether it is part of an extended name. Outside such names
// all separators become ".", and square brackets round ones.
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
