#include "stremo/vcd/name.h"

#include <algorithm>
#include <charconv>

#include "corv/util/extended_id.h"

namespace corv::vcd {
namespace {

constexpr bool IsBlank(char c) noexcept {
    return static_cast<unsigned char>(c) <= ' ';
}

std::string_view WithoutEndBlanks(std::string_view text) noexcept {
    while (!text.empty() && IsBlank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

// Returns where the group in brackets begins that ends a text, nullopt if there is none.
std::optional<std::size_t> LastGroup(std::string_view text) noexcept {
    if (text.empty() || text.back() != ']') {
        return std::nullopt;
    }
    const std::size_t open = text.rfind('[');
    return open != std::string_view::npos && open > 0 ? std::optional(open) : std::nullopt;
}

// Returns whether a text consists only of bracket groups and blanks.
bool IsGroups(std::string_view text) noexcept {
    text = WithoutEndBlanks(text);
    while (!text.empty()) {
        const std::size_t open = text.rfind('[');
        if (text.back() != ']' || open == std::string_view::npos) {
            return false;
        }
        text = WithoutEndBlanks(text.substr(0, open));
    }
    return true;
}

// Returns where the escaped part of a name ends, whose brackets belong to it.
std::size_t EscapedEnd(std::string_view text) noexcept {
    if (text.empty() || text[0] != '\\') {
        return 0;
    }
    const std::size_t last = text.rfind('\\');
    if (last > 0 && IsGroups(text.substr(last + 1))) {
        return last + 1;
    }
    return static_cast<std::size_t>(std::find_if(text.begin(), text.end(), IsBlank) - text.begin());
}

// Returns the name without the blanks before its bracket groups.
std::string Joined(std::string_view text, std::size_t escaped_end) {
    std::string name(text.substr(0, escaped_end));
    for (std::size_t i = escaped_end; i < text.size(); ++i) {
        if (text[i] == '[') {
            name.resize(std::max(WithoutEndBlanks(name).size(), escaped_end));
        }
        name += text[i];
    }
    return name;
}

std::string Doubled(std::string_view name) {
    std::string doubled(1, '\\');
    for (const char c : name.substr(1, name.size() - 2)) {
        doubled.append(c == '\\' ? 2 : 1, c);
    }
    return doubled + '\\';
}

}  // namespace

std::string ScopeName(std::string_view name) {
    if (!name.starts_with('\\') || name.size() < 2) {
        return std::string(name);
    }
    if (!name.ends_with('\\') || name.size() == 2) {
        return std::string(name) + ' ';
    }
    const bool closed = SkipExtendedID((std::string(name) + '.').c_str())[0] == '.';
    return closed ? std::string(name) : Doubled(name);
}

std::optional<Range> ReadRange(std::string_view group) noexcept {
    Range range{};
    const auto colon = group.find(':');
    if (group.size() < 5 || group.front() != '[' || group.back() != ']' ||
        colon == std::string_view::npos) {
        return std::nullopt;
    }
    const char* const begin = group.data();
    const auto [left_end, left_error] = std::from_chars(begin + 1, begin + colon, range.left);
    const char* const end = begin + group.size() - 1;
    const auto [right_end, right_error] = std::from_chars(begin + colon + 1, end, range.right);
    const bool read = left_error == std::errc() && right_error == std::errc() &&
                      left_end == begin + colon && right_end == end;
    return read ? std::optional(range) : std::nullopt;
}

VariableName ReadVariableName(std::string_view text, std::uint64_t width) {
    text = WithoutEndBlanks(text);
    const std::size_t escaped_end = EscapedEnd(text);
    VariableName result;
    if (const auto group = LastGroup(text); group && *group >= escaped_end) {
        result.range = ReadRange(text.substr(*group));
        if (result.range && width != 0 && result.range->Length() != width) {
            result.range.reset();
        }
        if (result.range) {
            text = WithoutEndBlanks(text.substr(0, *group));
        }
    }
    result.name = Joined(text, std::min(escaped_end, text.size()));
    return result;
}

}  // namespace corv::vcd
