#include "stimulus/recorded_name.h"

#include <algorithm>

#include "platform/ascii.h"
#include "util/hierarchy_separator.h"

namespace corv::stimulus {
namespace {

bool IsSeparator(char c) noexcept {
    return c == '.' || c == '/' || c == util::HierarchySeparator();
}

constexpr char RoundBracket(char c) noexcept {
    return c == '[' ? '(' : c == ']' ? ')' : c;
}

// Decides which characters of a name separate levels. If the name has names in backslashes, "." and
// "/" may belong to these.
class Separators {
public:
    Separators(std::string_view name, bool member) noexcept
        : plain_(name.find('\\') == std::string_view::npos), member_(member) {}

    bool At(std::string_view name, std::size_t place) const noexcept {
        const char c = name[place];
        return c == util::HierarchySeparator() || (plain_ && IsSeparator(c)) ||
               (member_ && place == 0 && c == '.');
    }

private:
    bool plain_;
    bool member_;
};

// Returns whether a path may end, or continue with members, where this text begins.
bool EndsName(std::string_view rest) noexcept {
    return rest.empty() || rest[0] == '(' || rest[0] == '[' || IsSeparator(rest[0]);
}

}  // namespace

std::optional<NameMatch> MatchRecordedName(std::string_view path, std::string_view name,
                                           bool member) noexcept {
    if (name.empty() || path.size() < name.size() || !EndsName(path.substr(name.size()))) {
        return std::nullopt;
    }
    const Separators separators(name, member);
    bool exact = true;
    for (std::size_t i = 0; i < name.size(); ++i) {
        const bool same = path[i] == name[i] || RoundBracket(path[i]) == name[i] ||
                          (IsSeparator(path[i]) && separators.At(name, i));
        if (!same && platform::Lower(path[i]) != platform::Lower(name[i])) {
            return std::nullopt;
        }
        exact = exact && same;
    }
    return NameMatch{exact, path.substr(name.size())};
}

std::string_view LastLevel(std::string_view name) noexcept {
    if (name.ends_with('\\')) {  // a name in backslashes
        const std::size_t begin = name.substr(0, name.size() - 1).rfind('\\');
        return name.substr(begin == std::string_view::npos ? 0 : begin);
    }
    const auto last = std::find_if(name.rbegin(), name.rend(), IsSeparator);
    name.remove_prefix(static_cast<std::size_t>(name.rend() - last));
    return name.substr(0, name.find_first_of("(["));
}

std::string ShownRecordedName(std::string_view name) {
    std::string shown(name);
    const bool in_backslashes =
        shown.ends_with('\\') || shown.starts_with('\\') || shown.find("\\\\") != std::string::npos;
    for (char& c : shown) {
        c = static_cast<unsigned char>(c) < ' ' ? ' ' : !in_backslashes && IsSeparator(c) ? '.' : c;
    }
    return shown;
}

}  // namespace corv::stimulus
