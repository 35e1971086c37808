#include <algorithm>
#include <unordered_set>

#include "cli/command.h"
#include "cli/recordings.h"
#include "cli/suggestion.h"
#include "host/fit_text.h"
#include "host/name_pattern.h"

namespace corv::cli {
namespace {

constexpr std::size_t kMostSuggested = 10'000;  // comparing more would delay the message noticeably

// Returns the pattern with every "*" widened to "**".
std::string Widened(const std::string& pattern) {
    std::string wide;
    for (std::size_t at = 0; at < pattern.size(); ++at) {
        const bool more = at > 0 && pattern[at - 1] == '*';
        wide += pattern[at] == '*' && more ? "" : pattern[at] == '*' ? "**" : pattern.substr(at, 1);
    }
    return wide;
}

std::string Count(std::size_t signals) {
    return std::to_string(signals) + (signals == 1 ? " signal" : " signals");
}

std::string NothingMatches(const host::Recording& recording, const std::string& pattern) {
    const std::string wide = Widened(pattern);
    const std::size_t count = host::SelectSignals(recording.Signals(), wide).size();
    return "no signal matches `" + pattern + "`" +
           (count > 0 ? "; `*` stays within a level, `" + wide + "` would choose " + Count(count)
                      : "; `corv info FILE` lists the signals");
}

// Returns the names whose last levels are `name`.
std::vector<std::string> EndingIn(const std::string& name, const std::vector<std::string>& names) {
    const host::NamePattern pattern("**." + name);
    std::vector<std::string> ending;
    for (const std::string& candidate : names) {
        auto state = pattern.Start();
        pattern.Advance(state, candidate, false);
        if (pattern.Accepts(state)) {
            ending.push_back(candidate);
        }
    }
    return ending;
}

// Returns the last `levels` levels of a name.
std::string LastLevels(const std::string& name, std::size_t levels) {
    std::size_t at = name.size();
    for (; levels > 0 && at != 0 && at != std::string::npos; --levels) {
        at = name.rfind('.', at - 1);
    }
    return at == std::string::npos || at == 0 ? name : name.substr(at + 1);
}

// Suggests the nearest name; if none is near, the one whose last levels are nearest, since users
// often leave the path out.
std::string Nearest(const std::string& name, const std::vector<std::string>& names) {
    const std::string shown = host::ShownName(name);
    std::string suggestion = Suggestion(shown, names);
    if (!suggestion.empty()) {
        return suggestion;
    }
    const auto levels = static_cast<std::size_t>(1 + std::count(shown.begin(), shown.end(), '.'));
    std::vector<std::string> ends;
    for (const std::string& candidate : names) {
        ends.push_back(LastLevels(candidate, levels));
    }
    const std::size_t nearest = NearestWord(shown, ends);
    return nearest < names.size() ? "; did you mean `" + names[nearest] + "`?" : "";
}

std::string NoSuchSignal(const host::Recording& recording, const std::string& name) {
    const auto names = host::DeclaredNames(recording.Signals(), kMostSuggested);
    const std::vector<std::string> ending = EndingIn(name, names);
    std::string hint;
    if (ending.size() > 1) {
        hint = "; did you mean `" + ending[0] + "`, or `**." + name + "` for all " +
               std::to_string(ending.size()) + "?";
    } else if (!ending.empty()) {
        hint = "; did you mean `" + ending[0] + "`?";
    } else {
        hint = Nearest(name, names);
    }
    return "the recording has no signal `" + name + "`" +
           (hint.empty() ? "; `corv info FILE` lists the signals" : hint);
}

}  // namespace

std::string UnknownSignal(const host::Recording& recording, const std::string& name) {
    return host::IsPattern(name) ? NothingMatches(recording, name) : NoSuchSignal(recording, name);
}

std::vector<host::NamedSignal> SelectNamed(const host::Recording& recording,
                                           const std::vector<std::string>& patterns) {
    std::vector<host::NamedSignal> selected;
    if (patterns.empty()) {
        selected.reserve(static_cast<std::size_t>(recording.Signals().GetCount()));
        ISignal* signal = nullptr;
        for (std::uint32_t i = 0; SUCCEEDED(recording.Signals().GetAt(i, &signal)); ++i) {
            const char* const name = signal->GetName();
            selected.push_back({host::ShownName(name != nullptr ? name : ""), signal, {}});
        }
        return selected;
    }
    std::unordered_set<const ISignal*> known;
    for (const std::string& pattern : patterns) {
        auto found = host::SelectSignals(recording.Signals(), pattern);
        if (found.empty()) {
            throw Failure(UnknownSignal(recording, pattern));
        }
        for (host::NamedSignal& named : found) {
            if (known.insert(named.signal).second) {
                selected.push_back(std::move(named));
            }
        }
    }
    return selected;
}

}  // namespace corv::cli
