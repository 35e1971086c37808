#include <algorithm>
#include <map>
#include <memory>
#include <utility>

#include "cli/command.h"
#include "cli/json.h"
#include "cli/options.h"
#include "cli/output.h"
#include "cli/recordings.h"
#include "corv/stremo/streams.h"
#include "corv/typeinfo/vhdl_type.h"
#include "corv/util/time_text.h"
#include "host/fit_text.h"
#include "host/signal_trace.h"

namespace corv::cli {
namespace {

struct InfoOptions {
    std::string file, output;
    std::vector<std::string> names;
    std::optional<TimeUnit> time_unit;
    bool json = false;
    bool names_only = false;
};

struct SignalFacts {
    std::string name;
    const std::string* type;  // among those of the facts
    std::uint64_t events = 0;
};

struct Facts {
    std::string format;
    std::int64_t first = -1;
    std::int64_t last = -1;
    std::uint64_t events = 0;
    std::map<std::string, std::string> types;  // in VHDL, by type-description strings
    std::vector<SignalFacts> signals;
    std::vector<std::string> notes;
    std::string problem;  // why the recording could not be read to its end
};

std::string TypeText(const char* type) {
    CString text;
    return TypeToVhdl(type, text) ? host::FromVhdl(text.View()) : type;
}

const std::string* FindType(Facts& facts, ISignal& signal) {
    const char* const type = signal.GetTypeInfo();
    const auto [entry, is_new] = facts.types.try_emplace(type != nullptr ? type : "");
    if (is_new) {
        entry->second = TypeText(entry->first.c_str());
    }
    return &entry->second;
}

// Returns the handles of the signals' scalars, each once.
std::vector<int> HandlesOf(const std::vector<host::NamedSignal>& signals) {
    std::vector<int> handles;
    for (const host::NamedSignal& named : signals) {
        for (ISignal* const leaf : host::LeavesOf(*named.signal)) {
            handles.push_back(leaf->GetHandle());
        }
    }
    std::erase(handles, -1);  // a scalar without events
    std::sort(handles.begin(), handles.end());
    handles.erase(std::unique(handles.begin(), handles.end()), handles.end());
    return handles;
}

// Numbers of events by handle.
class EventCounts {
public:
    explicit EventCounts(std::vector<int> handles)
        : handles_(std::move(handles)), counts_(handles_.size()) {}

    const std::vector<int>& Handles() const { return handles_; }
    // Null for a handle that is not counted.
    std::uint64_t* Find(int handle) {
        const std::size_t place = PlaceOf(handle);
        return place < handles_.size() && handles_[place] == handle ? &counts_[place] : nullptr;
    }

private:
    // Handles mostly follow one another.
    std::size_t PlaceOf(int handle) const {
        const std::int64_t near = handles_.empty() ? 0 : std::int64_t{handle} - handles_.front();
        if (near >= 0 && near < std::ssize(handles_) &&
            handles_[static_cast<std::size_t>(near)] == handle) {
            return static_cast<std::size_t>(near);
        }
        const auto place = std::lower_bound(handles_.begin(), handles_.end(), handle);
        return static_cast<std::size_t>(place - handles_.begin());
    }

    std::vector<int> handles_;  // ascending
    std::vector<std::uint64_t> counts_;
};

// Counts the events of the scalars; `selected` says that they are not all
// scalars of the recording; readers skip the others.
void CountEvents(const host::Recording& recording, EventCounts& counts, bool selected,
                 Facts& facts) {
    stremo::IEventsStreamRead& reader = recording.Reader();
    if (selected) {
        SelectStreamSignals(reader, counts.Handles());
    }
    const std::int64_t start = 0;
    for (int handle = reader.Seek(&start) ? reader.Next() : -1; handle != -1;
         handle = reader.Next()) {
        if (std::uint64_t* const count = counts.Find(handle)) {
            facts.last = *reader.GetCurrentTime();
            facts.first = facts.events == 0 ? facts.last : facts.first;
            ++facts.events;
            ++*count;
        }
    }
    facts.problem = recording.Problem();
}

Facts FactsOf(const InfoOptions& options) {
    const auto recording = OpenRecording(options.file, options.time_unit);
    const auto selected = SelectNamed(*recording, options.names);
    Facts facts;
    facts.format = recording->Reader().GetFormatName();
    EventCounts counts(HandlesOf(selected));
    CountEvents(*recording, counts, !options.names.empty(), facts);
    facts.signals.reserve(selected.size());
    for (const host::NamedSignal& named : selected) {
        SignalFacts signal{host::CleanText(named.name), FindType(facts, *named.signal), 0};
        for (ISignal* const leaf : host::LeavesOf(*named.signal)) {
            const std::uint64_t* const count = counts.Find(leaf->GetHandle());
            signal.events += count != nullptr ? *count : 0;
        }
        facts.signals.push_back(std::move(signal));
    }
    facts.notes = recording->Notes();
    return facts;
}

std::string Times(const Facts& facts) {
    return facts.events == 0 ? "no events"
                             : FormatTime(facts.first) + " to " + FormatTime(facts.last);
}

std::string InfoText(const Facts& facts) {
    std::string out = "format   " + facts.format + "\n" + "times    " + Times(facts) + "\n" +
                      "signals  " + std::to_string(facts.signals.size()) + "\n" + "events   " +
                      std::to_string(facts.events) + "\n";
    for (const std::string& note : facts.notes) {
        out += "note     " + host::CleanText(note) + "\n";
    }
    std::size_t names = 0;
    std::size_t digits = 6;
    for (const SignalFacts& signal : facts.signals) {
        names = std::max(names, host::TextWidth(signal.name));
        digits = std::max(digits, std::to_string(signal.events).size());
    }
    if (!facts.signals.empty()) {
        out += "\n" + std::string(digits - 6, ' ') + "events  name" +
               std::string(std::max<std::size_t>(names, 4) - 4, ' ') + "  type\n";
    }
    for (const SignalFacts& signal : facts.signals) {
        const std::string count = std::to_string(signal.events);
        out += std::string(digits - count.size(), ' ') + count + "  " + signal.name +
               std::string(std::max<std::size_t>(names, 4) - host::TextWidth(signal.name), ' ') +
               "  " + host::CleanText(*signal.type) + "\n";
    }
    return out;
}

std::string InfoJson(const Facts& facts) {
    Json signals = Json::array();
    for (const SignalFacts& signal : facts.signals) {
        signals.push_back(
            {{"name", signal.name}, {"type", *signal.type}, {"events", signal.events}});
    }
    Json first = nullptr;
    Json last = nullptr;
    if (facts.events > 0) {
        first = facts.first;
        last = facts.last;
    }
    return JsonLine({{"schema", 1},
                     {"format", facts.format},
                     {"first", first},
                     {"last", last},
                     {"events", facts.events},
                     {"notes", facts.notes},
                     {"signals", std::move(signals)}});
}

// Writes the names alone, for which the events need not be read; the completions rely on its speed.
int WriteNames(const InfoOptions& options) {
    const auto recording = OpenRecording(options.file, options.time_unit);
    std::string names;
    for (const host::NamedSignal& named : SelectNamed(*recording, options.names)) {
        names += host::CleanText(named.name) + "\n";
    }
    WriteOutput(options.output, names);
    return kFine;
}

int RunInfo(const InfoOptions& options) {
    if (options.names_only) {
        return WriteNames(options);
    }
    const Facts facts = FactsOf(options);
    WriteOutput(options.output, options.json ? InfoJson(facts) : InfoText(facts), {options.file});
    if (!facts.problem.empty()) {
        WriteMessage("error", facts.problem);
        return kFailed;
    }
    return kFine;
}

}  // namespace

void AddInfo(CLI::App& program, Action& chosen) {
    CLI::App* command = program.add_subcommand(
        "info",
        "show what a recording contains\n"
        "Shows the format, the times of the first and the last event, the signals with their types "
        "and numbers of events, and what had to be repaired or was lost when it was read.");
    auto options = std::make_shared<InfoOptions>();
    command->add_option("FILE", options->file, "The recording")->required();
    command
        ->add_option("-n,--name", options->names,
                     "Only signals of that name or pattern; the events and their times are theirs")
        ->type_name("GLOB")
        ->allow_extra_args(false);
    AddRecordingUnit(*command, options->time_unit);
    AddText(*command, "-o,--output", "FILE", options->output, "Write to FILE");
    command->add_flag("--json", options->json, "Write JSON, times in picoseconds");
    command->add_flag("--names", options->names_only, "Write the names alone, a line each");
    command->footer("corv info run.evt\ncorv info run.evt -n 'tb.u1.**' --json");
    command->callback([&chosen, options] { chosen = [options] { return RunInfo(*options); }; });
}

}  // namespace corv::cli
