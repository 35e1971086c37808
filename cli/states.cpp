#include <algorithm>
#include <memory>

#include "cli/command.h"
#include "cli/json.h"
#include "cli/options.h"
#include "cli/output.h"
#include "cli/problems.h"
#include "cli/state_text.h"

namespace corv::cli {
namespace {

struct StatesOptions {
    std::string text;
    std::optional<TimeUnit> time_unit;
    host::ColourMode colour = host::ColourMode::Auto;
    bool json = false;
};

std::string Table(const std::vector<SwitchTime>& states, std::optional<TimeUnit> unit) {
    std::size_t width = 4;
    for (const SwitchTime& state : states) {
        width = std::max(width, TimeText(state.time, unit).size());
    }
    const auto line = [width](const std::string& time, const char* state) {
        return std::string(width - time.size(), ' ') + time + "  " + state + "\n";
    };
    std::string out = line("time", "state");
    for (const auto& [time, on] : states) {
        out += line(TimeText(time, unit), on ? "on" : "off");
    }
    return out;
}

int RunStates(const StatesOptions& options) {
    const std::string text = TextOperand(options.text, "state text");
    const StateText read = ReadStates(text);
    CappedProblems list;
    CheckStates(text, 0, list);
    const auto problems = list.Take();
    if (options.json) {
        Json document = {{"schema", 1}, {"text", read.normal}, {"states", StatesJson(read.states)}};
        AppendProblems(document, text, problems);
        WriteOutput("", JsonLine(document));
    } else {
        ReportProblems("states", text, problems, options.colour);
        WriteOutput("", Table(read.states, options.time_unit));
    }
    return problems.empty() ? kFine : kFound;
}

}  // namespace

void AddStates(CLI::App& program, Action& chosen) {
    CLI::App* command = program.add_subcommand(
        "states",
        "show when a stimulator switches on and off\n"
        "A state text lists times with ; between them, `100ns;200ns;1us`: the stimulator switches "
        "on at the first, off at the second and so on alternately. A time without a unit counts "
        "picoseconds. What is odd about the text is reported with its place, and the exit status "
        "is 1 "
        "then. A text that begins with - goes after --.");
    auto options = std::make_shared<StatesOptions>();
    AddTextOperand(*command, options->text, "The state text, or - for standard input");
    AddTimeUnit(*command, "--time-unit", options->time_unit,
                "The unit to write times in; unless given, the largest without a fraction");
    AddColour(*command, options->colour);
    command->add_flag("--json", options->json, "Write JSON, times in picoseconds");
    command->footer("corv states '100ns;200ns;1us'\ncorv states --json - < states.txt");
    command->callback([&chosen, options] { chosen = [options] { return RunStates(*options); }; });
}

}  // namespace corv::cli
