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

struct ValueOptions : FormulaOptions {
    std::string output;
    std::optional<std::int64_t> time;
    bool json = false;
    bool csv = false;
};

int RunValue(const ValueOptions& options) {
    if (!options.time) {
        throw Failure("name a time with --at");
    }
    if (options.json && options.csv) {
        throw Failure("only one of --json and --csv can be chosen");
    }
    const Shown shown(options, options.csv ? BusStyle::Plain : BusStyle::Literal);
    std::string text;
    std::string table = "signal,value\n";
    Json values = Json::array();
    const std::int64_t time = *options.time;
    if (const auto end = shown.RecordingEnd(); end && *end < time) {
        WriteMessage("warning",
                     "the recording ends at " + FormatTime(*end) + "; these are its last values");
    }
    auto traces = shown.Events({time, time}, host::Recording::kAllTimes);
    std::size_t width = 0;
    for (host::Trace& trace : traces) {
        trace.name = host::CleanText(trace.name);
        width = std::max(width, host::TextWidth(trace.name));
    }
    for (const host::Trace& trace : traces) {
        const auto value =
            trace.changes.empty() ? trace.before : std::optional(trace.changes.back().value);
        text += trace.name + std::string(width - host::TextWidth(trace.name), ' ') + "  " +
                host::CleanText(value.value_or("(no value yet)")) + "\n";
        table += CsvField(trace.name) + "," + CsvField(value.value_or("")) + "\n";
        Json shown_value = nullptr;
        if (value) {
            shown_value = *value;
        }
        values.push_back({{"name", trace.name}, {"value", shown_value}});
    }
    WriteOutput(options.output,
                options.json
                    ? JsonLine({{"schema", 1}, {"time", time}, {"signals", std::move(values)}})
                : options.csv ? table
                              : text,
                {options.file});
    return kFine;
}

}  // namespace

void AddValueAt(CLI::App& program, Action& chosen) {
    CLI::App* command = program.add_subcommand(
        "value",
        "show the values at a time\n"
        "Shows the value that each signal of a recording has at a time; a change at exactly that "
        "time counts.");
    auto options = std::make_shared<ValueOptions>();
    AddRecordingOptions(*command, *options);
    command->get_option("FILE")->required();
    AddTime(*command, "--at", options->time, "The time at which to show the values");
    AddRecordingUnit(*command, options->recording_unit);
    AddRadix(*command, *options);
    AddText(*command, "-o,--output", "FILE", options->output, "Write to FILE");
    command->add_flag("--json", options->json, "Write JSON, the time in picoseconds");
    command->add_flag("--csv", options->csv,
                      "Write comma-separated values, a line per signal, vectors as 0xA5");
    command->footer("corv value run.evt --at 120ns\ncorv value run.evt --at 1us -n 'tb.cpu.*'");
    command->callback([&chosen, options] { chosen = [options] { return RunValue(*options); }; });
}

}  // namespace corv::cli
