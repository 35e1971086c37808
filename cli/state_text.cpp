// Asks the library's CStimState how it reads a state text and explains what it drops or cuts.

#include "cli/state_text.h"

#include <cstdint>
#include <optional>

#include "corv/records/stim_state.h"
#include "corv/util/time_text.h"

namespace corv::cli {
namespace {

// Returns the time of a part as the library reads it; nothing if the library skips it.
std::optional<std::int64_t> TimeOf(const std::string& part) {
    CStimState single;
    single.Create(part.c_str());
    return single.Store(nullptr, 0) > 0 ? std::optional(single.FirstState()) : std::nullopt;
}

std::string WhySkipped(const std::string& part) {
    Problem problem;
    const auto time = ParseTime(part, &problem);
    return "skipped: " + (time
                              ? "`" + part + "` has blanks in it; write `" + FormatTime(*time) + "`"
                              : problem.sentence);
}

}  // namespace

StateText ReadStates(const std::string& text) {
    CStimState states;
    states.Create(text.c_str());
    StateText read;
    read.normal.resize(states.Store(nullptr, 0));
    states.Store(read.normal.data(), static_cast<unsigned>(read.normal.size()));
    read.normal.resize(read.normal.size() - (read.normal.empty() ? 0 : 1));
    // -1 can be a time as well as the end of the list, so only their number says where the list
    // ends
    std::int64_t time = states.FirstState();
    for (std::size_t left = SplitText(read.normal, ';').size(); left > 0; --left) {
        read.states.push_back({time, states.IsOn(time)});
        time = states.NextState();
    }
    return read;
}

void CheckStates(std::string_view text, std::size_t offset, CappedProblems& problems) {
    std::optional<std::int64_t> last;
    for (const auto& [position, view] : SplitText(text, ';')) {
        const std::string part(view);
        const auto time = TimeOf(part);
        const auto complain = [&, at = offset + position](std::string sentence) {
            problems.Add(at, part.size(), std::move(sentence));
        };
        if (!time) {
            complain(WhySkipped(part));
            continue;
        }
        if (!ParseTime(part)) {
            complain("a time is a whole number of picoseconds; cut to " + FormatTime(*time));
        }
        if (last && *time <= *last) {
            complain((*time == *last ? "the time is not later than " : "the time is before ") +
                     FormatTime(*last) +
                     ", the time that precedes it; on and off alternate in the order of the text");
        } else if (*time < 0) {
            complain("the time is negative");
        }
        last = time;
    }
}

Json StatesJson(const std::vector<SwitchTime>& states) {
    Json list = Json::array();
    for (const auto& [time, on] : states) {
        list.push_back({{"time", time}, {"on", on}});
    }
    return list;
}

}  // namespace corv::cli
