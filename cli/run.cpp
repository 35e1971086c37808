#include <limits>
#include <memory>
#include <stdexcept>

#include "cli/command.h"
#include "cli/formulas.h"
#include "cli/options.h"
#include "cli/output.h"
#include "host/driver.h"
#include "host/recorder.h"

namespace corv::cli {
namespace {

struct RunOptions : FormulaOptions {
    std::string output;
};

int RunRun(const RunOptions& options) {
    if (options.output.empty()) {
        throw Failure("name the event file to write with -o");
    }
    const std::vector<NamedSource> sources = LoadSources(options);
    if (sources.empty()) {
        throw Failure("nothing to record; give a formula with -f");
    }
    const host::TimeWindow window = ChooseWindow(options, NaturalEnd(options, sources));
    std::vector<std::unique_ptr<host::DrivenSignal>> driven;
    std::vector<std::pair<std::string, ISignal*>> signals;
    try {
        for (const NamedSource& named : sources) {
            const host::Trace recorded =
                host::RecordEvents(*named.source, window, std::numeric_limits<std::size_t>::max());
            driven.push_back(std::make_unique<host::DrivenSignal>(recorded, window.start,
                                                                  named.shape, named.type));
            if (!driven.back()->HasOwnTexts()) {
                signals.emplace_back(named.name, &driven.back()->Signal());
                continue;
            }
            throw Failure("the values of " + named.name +
                          " are of no type by themselves; write one behind the name, such as " +
                          named.name + ":integer=");
        }
        host::WriteRecording(options.output, signals, window.end);
    } catch (const Failure&) {
        throw;
    } catch (const std::runtime_error& error) {
        throw Failure(error.what());
    }
    return kFine;
}

}  // namespace

void AddRun(CLI::App& program, Action& chosen) {
    CLI::App* command = program.add_subcommand(
        "run",
        "record what formulas do\n"
        "Drives a signal for each formula and each replayed signal through a stretch of time and "
        "writes all of them to an event file.");
    auto options = std::make_shared<RunOptions>();
    AddFormulaOptions(*command, *options);
    AddText(*command, "-o,--output", "FILE", options->output, "The event file to write");
    command->footer(
        "corv run -f clk='0 0, 1 5ns -r 10ns' -f cnt:8=\"$(corv counter --period 10ns)\" -e 1us -o "
        "run.evt\n"
        "corv run -f 'state:(idle, run, done)=idle 0, run 20ns, done 80ns' -e 100ns -o fsm.evt");
    command->callback([&chosen, options] { chosen = [options] { return RunRun(*options); }; });
}

}  // namespace corv::cli
