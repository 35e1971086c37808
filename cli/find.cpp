#include <algorithm>
#include <memory>
#include <utility>

#include "cli/command.h"
#include "cli/formulas.h"
#include "cli/json.h"
#include "cli/measure_text.h"
#include "cli/options.h"
#include "cli/output.h"
#include "cli/problems.h"
#include "cli/recordings.h"
#include "host/find/search.h"

namespace corv::cli {
namespace {

constexpr int kMostListed = 10000;

struct FindCommand {
    std::string file, condition, clock, output;
    std::optional<std::int64_t> start, end, glitch;
    std::optional<TimeUnit> time_unit;
    std::optional<int> max;
    bool first = false;
    bool count = false;
    bool measure = false;
    bool json = false;
    bool csv = false;
    host::ColourMode colour = host::ColourMode::Auto;
};

// A stretch of time, or a moment, which has no length. The end is missing where the window ends
// before it.
struct Found {
    std::int64_t start;
    std::optional<std::int64_t> end;
};

struct Findings {
    bool are_stretches = false;
    std::vector<Found> listed;
    std::uint64_t count = 0;
    std::string condition;
};

// Says what is wrong with a condition, with the place under it.
[[noreturn]] void Report(const FindCommand& options, const std::string& name,
                         const std::string& text, const find::Refusal& refusal) {
    ReportProblems(name, text,
                   {{refusal.position, refusal.length, refusal.what(), Problem::Severity::Error}},
                   options.colour);
    throw Failure("");
}

std::unique_ptr<find::Search> MakeSearch(const FindCommand& options,
                                         const host::Recording& recording, const std::string& name,
                                         const std::string& text) {
    try {
        return std::make_unique<find::Search>(recording, text, [&](const std::string& signal) {
            return UnknownSignal(recording, signal);
        });
    } catch (const find::Refusal& refusal) {
        Report(options, name, text, refusal);
    }
}

void Read(find::Search& search, host::TimeWindow window) {
    try {
        search.Read(window);
    } catch (const std::runtime_error& error) {
        throw Failure(error.what());
    }
}

Findings FindStretches(find::Level& level, std::int64_t start, std::size_t most) {
    Findings findings;
    findings.are_stretches = true;
    std::int64_t begin = level.AtFirst() ? start : level.Next();
    while (begin >= 0) {
        const std::int64_t end = level.Next();
        if (findings.count++ < most) {
            findings.listed.push_back({begin, end < 0 ? std::nullopt : std::optional(end)});
        }
        begin = end < 0 ? -1 : level.Next();
    }
    return findings;
}

Findings FindMoments(find::Moments& moments, std::size_t most) {
    Findings findings;
    for (std::int64_t time = moments.Next(); time >= 0; time = moments.Next()) {
        if (findings.count++ < most) {
            findings.listed.push_back({time, time});
        }
    }
    return findings;
}

std::string TimeOf(const FindCommand& options, std::int64_t time) {
    return TimeText(time, options.time_unit);
}

std::string Table(const FindCommand& options, const Findings& findings) {
    std::vector<std::vector<std::string>> rows;
    rows.push_back(findings.are_stretches ? std::vector<std::string>{"from", "to", "length"}
                                          : std::vector<std::string>{"time"});
    for (const Found& found : findings.listed) {
        rows.push_back({TimeOf(options, found.start)});
        if (findings.are_stretches) {
            rows.back().push_back(found.end ? TimeOf(options, *found.end) : "the end");
            rows.back().push_back(found.end ? TimeOf(options, *found.end - found.start) : "");
        }
    }
    return AlignedRows(rows);
}

std::string Csv(const Findings& findings) {
    std::string out = findings.are_stretches ? "start_ps,end_ps\n" : "time_ps\n";
    for (const Found& found : findings.listed) {
        out += std::to_string(found.start);
        if (findings.are_stretches) {
            out += "," + (found.end ? std::to_string(*found.end) : "");
        }
        out += "\n";
    }
    return out;
}

std::string JsonText(const Findings& findings) {
    Json list = Json::array();
    for (const Found& found : findings.listed) {
        Json end = nullptr;
        if (found.end) {
            end = *found.end;
        }
        list.push_back(findings.are_stretches ? Json{{"start", found.start}, {"end", end}}
                                              : Json{{"time", found.start}});
    }
    return JsonLine({{"schema", 1},
                     {"condition", findings.condition},
                     {"kind", findings.are_stretches ? "stretches" : "moments"},
                     {"count", findings.count},
                     {"truncated", findings.listed.size() < findings.count},
                     {"found", std::move(list)}});
}

std::string TextOf(const FindCommand& options, const Findings& findings) {
    return options.json              ? JsonText(findings)
           : options.csv             ? Csv(findings)
           : options.count           ? std::to_string(findings.count) + "\n"
           : findings.listed.empty() ? ""
                                     : Table(options, findings);
}

int List(const FindCommand& options, find::Search& search, std::int64_t start) {
    const auto most =
        static_cast<std::size_t>(options.first ? 1 : options.max.value_or(kMostListed));
    Findings findings = search.IsLevel() ? FindStretches(*search.TakeLevel(), start, most)
                                         : FindMoments(*search.TakeMoments(), most);
    findings.condition = options.condition;
    WriteOutput(options.output, TextOf(options, findings), {options.file});
    if (findings.listed.size() < findings.count && !options.first && !options.count) {
        WriteMessage("warning", "only the first " + std::to_string(findings.listed.size()) +
                                    " of " + std::to_string(findings.count) +
                                    " are listed; --max lists more");
    }
    return findings.count > 0 ? kFine : kFound;
}

// A signal by its name alone is measured by its changes where it is no condition by itself.
std::unique_ptr<find::Search> MakeMeasured(const FindCommand& options,
                                           const host::Recording& recording) {
    const auto words = find::ReadWords(options.condition);
    const bool is_name = words.size() == 2 && words[0].kind == find::Word::Kind::Name;
    for (const std::string& text : {options.condition, "changes(" + options.condition + ")"}) {
        try {
            if (is_name) {
                return std::make_unique<find::Search>(recording, text,
                                                      [](const std::string&) { return ""; });
            }
        } catch (const find::Refusal&) {
            continue;
        }
    }
    return MakeSearch(options, recording, "condition", options.condition);
}

// The changes of what is measured against a clock: both edges of a condition.
find::MomentsPtr ChangesOf(find::Search& search) {
    return search.IsLevel() ? find::Either(find::Edges(search.TakeLevel(), true),
                                           find::Edges(search.TakeLevel(), false))
                            : search.TakeMoments();
}

int Measure(const FindCommand& options, const host::Recording& recording, host::TimeWindow window) {
    const auto search = MakeMeasured(options, recording);
    Read(*search, window);
    Measured measured;
    measured.condition = options.condition;
    measured.time_unit = options.time_unit;
    if (!options.clock.empty()) {
        const auto clock = MakeSearch(options, recording, "clock", options.clock);
        Read(*clock, window);
        const find::MomentsPtr changes = ChangesOf(*search);
        const find::MomentsPtr edges =
            clock->IsLevel() ? find::Edges(clock->TakeLevel(), true) : clock->TakeMoments();
        measured.setup_and_hold = find::MeasureSetupAndHold(*changes, *edges);
    } else if (search->IsLevel()) {
        measured.level = find::MeasureLevel(*search->TakeLevel(), options.glitch.value_or(0));
    } else {
        measured.intervals = find::MeasureMoments(*search->TakeMoments());
    }
    WriteOutput(options.output, options.json ? MeasuredJson(measured) : MeasuredText(measured),
                {options.file});
    return IsEmpty(measured) ? kFound : kFine;
}

int RunFind(const FindCommand& options) {
    if (options.json + options.csv + (options.count && !options.json) > 1) {
        throw Failure("only one of --json, --csv and --count can be chosen");
    }
    if (options.measure && (options.csv || options.count || options.first)) {
        throw Failure("--measure writes figures as text or --json");
    }
    if (!options.measure && (!options.clock.empty() || options.glitch)) {
        throw Failure("--clock and --glitch belong to --measure");
    }
    const auto recording = OpenRecording(options.file);
    FormulaOptions shown;
    shown.start = options.start;
    shown.end = options.end;
    const host::TimeWindow window =
        ChooseWindow(shown, std::max(recording->LatestTime(), options.start.value_or(0) + 1));
    if (options.measure) {
        return Measure(options, *recording, window);
    }
    const auto search = MakeSearch(options, *recording, "condition", options.condition);
    Read(*search, window);
    return List(options, *search, window.start);
}

void AddWindow(CLI::App& command, FindCommand& options) {
    AddTime(command, "-s,--start", options.start, "Where the window starts; 0 unless given");
    AddTime(command, "-e,--end", options.end,
            "Where the window ends, itself included; the recording's last event unless given");
    AddTimeUnit(command, "--time-unit", options.time_unit,
                "The unit to write times in; unless given, the largest without a fraction");
}

}  // namespace

void AddFind(CLI::App& program, Action& chosen) {
    CLI::App* command = program.add_subcommand(
        "find",
        "find where a condition holds in a recording\n"
        "Lists the moments of edges and changes, or the stretches of time in which a condition "
        "holds. Conditions compare signals with values (=, /=, <, <=, >, >=, ?=) and join with "
        "and, or, xor and not; rising(c), falling(c), changes(s), unknown(s), before(c), s stable "
        "for TIME, c for TIME, and e within TIME of|before|after e. Values are those after all "
        "changes of a time; before(...) is what a flip-flop sees. The exit code is 1 when nothing "
        "is found.");
    auto options = std::make_shared<FindCommand>();
    command->add_option("FILE", options->file, "The recording")->required();
    command->add_option("CONDITION", options->condition, "What to find")->required();
    command->add_flag("--first", options->first, "List the first only");
    command->add_flag("--count", options->count, "Write how many there are");
    AddNumber(*command, "--max", 1, 10000000, options->max,
              "List at most N, the earliest; 10000 unless given");
    command->add_flag("--measure", options->measure,
                      "Write figures: period, frequency, duty and widths of a condition; the "
                      "time between moments; setup and hold with --clock");
    AddText(*command, "--clock", "CONDITION", options->clock,
            "The moments against which --measure takes setup and hold, such as 'rising(clk)'");
    AddTime(*command, "--glitch", options->glitch,
            "The time below which --measure counts a pulse as a glitch");
    AddWindow(*command, *options);
    AddText(*command, "-o,--output", "FILE", options->output, "Write to FILE");
    command->add_flag("--json", options->json, "Write JSON, times in picoseconds");
    command->add_flag("--csv", options->csv, "Write comma-separated values, times in picoseconds");
    AddColour(*command, options->colour);
    command->footer(
        "corv find run.ghw 'rising(clk) and before(data) = x\"1F\"'\n"
        "corv find run.ghw 'unknown(bus) for 20ns' --first\n"
        "corv find run.ghw 'rising(req) not within 100ns before rising(ack)' --count\n"
        "corv find run.ghw clk --measure\n"
        "corv find run.ghw data --measure --clock 'rising(clk)'");
    command->callback([&chosen, options] { chosen = [options] { return RunFind(*options); }; });
}

}  // namespace corv::cli
