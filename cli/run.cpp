#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <utility>

#include "cli/command.h"
#include "cli/formulas.h"
#include "cli/options.h"
#include "cli/output.h"
#include "cli/output_file.h"
#include "cli/progress.h"
#include "corv/util/time_text.h"
#include "host/recorder.h"

namespace corv::cli {
namespace {

struct RunOptions : FormulaOptions {
    std::string output, format;
};

// Announces a run that would write very many events: an end in too large a unit is easily written.
void WarnOfMany(const std::vector<NamedSource>& sources, host::TimeWindow window) {
    // This many take seconds to write and fill hundreds of megabytes.
    constexpr double kMany = 1e8;
    double events = 0;
    for (const NamedSource& named : sources) {
        events += host::EstimateEvents(*named.source, window);
    }
    if (events >= kMany) {
        char count[32];
        std::snprintf(count, sizeof count, "%.2g", events / 1e6);
        WriteMessage("warning", "about " +
                                    std::to_string(std::lround(std::strtod(count, nullptr))) +
                                    " million changes are written up to " + FormatTime(window.end) +
                                    "; -e ends the run earlier");
    }
}

int RunRun(const RunOptions& options) {
    if (options.output.empty()) {
        throw Failure("name the file to write with -o");
    }
    const std::string format = FormatOf(options.output, options.format);
    const std::vector<NamedSource> sources = LoadSources(options);
    if (sources.empty()) {
        throw Failure("nothing to record; give a formula with -f");
    }
    host::RecordOptions record;
    record.window = ChooseWindow(options, NaturalEnd(options, sources));
    record.vcd = format == "vcd";
    OutputFile output(options.output, InputsOf(options));
    WarnOfMany(sources, record.window);
    Progress progress("writing " + options.output);
    record.progress = [&](std::int64_t time) {
        progress.Tell(static_cast<double>(time - record.window.start),
                      static_cast<double>(record.window.end - record.window.start));
    };
    std::vector<host::SourceSignal> signals;
    for (const NamedSource& named : sources) {
        signals.push_back({named.name, named.source.get(), named.shape, named.type, {}});
    }
    try {
        host::RecordSources(std::move(signals), output.path(), record);
    } catch (const std::runtime_error& error) {
        throw Failure(output.Complaint(error.what()));
    }
    output.Commit();
    return kFine;
}

}  // namespace

void AddRun(CLI::App& program, Action& chosen) {
    CLI::App* command = program.add_subcommand(
        "run",
        "record what formulas do\n"
        "Drives a signal for each formula and each replayed signal through a stretch of time and "
        "writes all of them to an event file or a value change dump. The format is told by the "
        "suffix of the output, .evt or .vcd.");
    auto options = std::make_shared<RunOptions>();
    AddFormulaOptions(*command, *options);
    AddText(*command, "-o,--output", "FILE", options->output,
            "The file to write; - for standard output");
    AddChoice(*command, "--format", "evt|vcd", "The format to write, whatever the suffix",
              [options = options.get()](const std::string& word) { options->format = word; });
    command->footer(
        "corv run -f clk='0 0, 1 5ns -r 10ns' -f cnt:8=\"$(corv counter --period 10ns)\" -e 1us -o "
        "run.evt\n"
        "corv run -f 'state:(idle, run, done)=idle 0, run 20ns, done 80ns' -e 100ns -o fsm.evt");
    command->callback([&chosen, options] { chosen = [options] { return RunRun(*options); }; });
}

}  // namespace corv::cli
