#include <algorithm>
#include <memory>

#include "cli/command.h"
#include "cli/formulas.h"
#include "cli/json.h"
#include "cli/options.h"
#include "cli/output.h"
#include "cli/recordings.h"
#include "corv/util/time_text.h"
#include "host/fit_text.h"

namespace corv::cli {
namespace {

constexpr int kDefaultMax = 10000;

struct EventsOptions : FormulaOptions {
    std::string output;
    std::optional<int> max;
    bool json = false;
    bool csv = false;
};

// One event of the listing; names and values stay in the traces, so that sorting moves no texts.
struct Event {
    std::int64_t time;
    std::size_t signal;
    const std::string* value;
};

struct Listing {
    host::TimeWindow window;
    std::vector<host::Trace> traces;
    std::vector<Event> events;  // by time, then by signal
    bool truncated = false;
};

Listing MakeListing(const EventsOptions& options) {
    const auto max = static_cast<std::size_t>(options.max.value_or(kDefaultMax));
    const Shown shown(options, options.csv ? BusStyle::Plain : BusStyle::Literal);
    Listing listing;
    listing.window = shown.Window();
    if (const auto end = shown.RecordingEnd(); end && *end < listing.window.start) {
        WriteMessage("warning",
                     "the recording ends at " + FormatTime(*end) + ", before the window");
    }
    listing.traces = shown.Events(listing.window, max);
    for (host::Trace& trace : listing.traces) {
        trace.name = host::CleanText(trace.name);
    }
    for (std::size_t i = 0; i < listing.traces.size(); ++i) {
        listing.truncated |= listing.traces[i].truncated;
        for (const host::Change& change : listing.traces[i].changes) {
            listing.events.push_back({change.time, i, &change.value});
        }
    }
    std::stable_sort(listing.events.begin(), listing.events.end(),
                     [](const Event& a, const Event& b) { return a.time < b.time; });
    if (listing.events.size() > max) {
        listing.events.resize(max);
        listing.truncated = true;
    }
    return listing;
}

// Returns a table with a row for each time and a column for each signal; a cell is empty if the
// signal has no event at that time.
std::string Table(const Listing& listing, std::optional<TimeUnit> unit) {
    std::vector<std::vector<std::string>> rows(1, {"time"});
    for (const host::Trace& trace : listing.traces) {
        rows.front().push_back(trace.name);
    }
    std::int64_t last = -1;
    for (const Event& event : listing.events) {
        if (event.time != last) {
            rows.emplace_back(rows.front().size());
            rows.back()[0] = TimeText(event.time, unit);
            last = event.time;
        }
        rows.back()[event.signal + 1] = host::CleanText(*event.value);
    }
    std::vector<std::size_t> widths(rows.front().size());
    for (const auto& row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            widths[i] = std::max(widths[i], host::TextWidth(row[i]));
        }
    }
    std::string out;
    for (const auto& row : rows) {
        std::string line(widths[0] - host::TextWidth(row[0]), ' ');
        line += row[0];
        for (std::size_t i = 1; i < row.size(); ++i) {
            line += "  " + row[i] + std::string(widths[i] - host::TextWidth(row[i]), ' ');
        }
        line.erase(line.find_last_not_of(' ') + 1);
        out += line + "\n";
    }
    return out;
}

std::string Csv(const Listing& listing) {
    std::string out = "time_ps,signal,value\n";
    for (const Event& event : listing.events) {
        out += std::to_string(event.time) + "," + CsvField(listing.traces[event.signal].name) +
               "," + CsvField(*event.value) + "\n";
    }
    return out;
}

std::string JsonText(const Listing& listing) {
    Json signals = Json::array();
    for (const host::Trace& trace : listing.traces) {
        Json before = nullptr;
        if (trace.before) {
            before = *trace.before;
        }
        signals.push_back({{"name", trace.name}, {"before", before}, {"events", Json::array()}});
    }
    for (const Event& event : listing.events) {
        signals[event.signal]["events"].push_back({{"time", event.time}, {"value", *event.value}});
    }
    return JsonLine({{"schema", 1},
                     {"start", listing.window.start},
                     {"end", listing.window.end},
                     {"truncated", listing.truncated},
                     {"signals", std::move(signals)}});
}

int RunEvents(const EventsOptions& options) {
    if (options.json && options.csv) {
        throw Failure("only one of --json and --csv can be chosen");
    }
    const Listing listing = MakeListing(options);
    WriteOutput(options.output,
                options.json  ? JsonText(listing)
                : options.csv ? Csv(listing)
                              : Table(listing, options.time_unit),
                InputsOf(options));
    if (listing.truncated) {
        WriteMessage("warning", "only the first " + std::to_string(listing.events.size()) +
                                    " events are listed, up to " +
                                    FormatTime(listing.events.back().time) + "; --max lists more");
    }
    return kFine;
}

}  // namespace

void AddEvents(CLI::App& program, Action& chosen) {
    CLI::App* command =
        program.add_subcommand("events",
                               "list the events of formulas and recordings\n"
                               "Lists the times at which a signal or formula sets a value, the "
                               "same as before included, and the "
                               "values, from the start of the window through its end.");
    auto options = std::make_shared<EventsOptions>();
    AddRecordingOptions(*command, *options);
    AddFormulaOptions(*command, *options);
    AddText(*command, "-o,--output", "FILE", options->output, "Write to FILE");
    AddNumber(*command, "--max", 1, 10000000, options->max,
              "List at most N events, the earliest; 10000 unless given");
    command->add_flag("--json", options->json, "Write JSON, times in picoseconds");
    command->add_flag(
        "--csv", options->csv,
        "Write comma-separated values, a line per event, times in picoseconds, vectors "
        "as 0xA5");
    command->footer(
        "corv events -f clk='0 0, 1 5ns -r 10ns' -e 50ns\n"
        "corv events -f a='0 0, 1 10ns' -f b='Z 0, 1 10ns, 0 @15ns' --csv -o events.csv\n"
        "corv events run.evt -n tb.clk -e 1us");
    command->callback([&chosen, options] { chosen = [options] { return RunEvents(*options); }; });
}

}  // namespace corv::cli
