#include <algorithm>
#include <memory>
#include <stdexcept>

#include "cli/command.h"
#include "cli/options.h"
#include "cli/output.h"
#include "cli/output_file.h"
#include "cli/progress.h"
#include "cli/recordings.h"
#include "cli/suggestion.h"
#include "corv/util/time_text.h"
#include "host/convert.h"

namespace corv::cli {
namespace {

struct ConvertCommand {
    std::string input, output, other_output, format;
    std::vector<std::string> names;
    std::optional<std::int64_t> start, end;
    std::optional<TimeUnit> time_unit;
    bool four_state = false;
    bool quiet = false;
};

host::ConvertOptions OptionsOf(const ConvertCommand& command) {
    host::ConvertOptions options;
    options.start = command.start.value_or(0);
    options.end = command.end;
    options.four_state = command.four_state;
    if (options.start < 0) {
        throw Failure("--start is negative");
    }
    if (options.end && *options.end < options.start) {
        throw Failure("the window ends at " + FormatTime(*options.end) + ", before its start at " +
                      FormatTime(options.start));
    }
    return options;
}

std::vector<host::NamedSignal> SelectWhole(const host::Recording& recording,
                                           const ConvertCommand& command) {
    std::vector<host::NamedSignal> selected = SelectNamed(recording, command.names);
    for (const host::NamedSignal& named : selected) {
        if (named.slice) {
            throw Failure("a slice cannot be converted: " + named.name +
                          "; name the whole vector, or its elements");
        }
    }
    if (selected.empty()) {
        throw Failure(command.input + " has no signals");
    }
    return selected;
}

// Returns the output, which can be named by OUT or by -o but not by both.
const std::string& OutputOf(const ConvertCommand& command) {
    if (command.output.empty() == command.other_output.empty()) {
        throw Failure(command.output.empty()
                          ? "the file to write is missing; write corv convert IN OUT"
                          : "two files to write are named, `" + command.output + "` and `" +
                                command.other_output + "`; leave one out");
    }
    return command.output.empty() ? command.other_output : command.output;
}

int RunConvert(const ConvertCommand& command) {
    const std::string& name = OutputOf(command);
    const std::string format = FormatOf(name, command.format);
    host::ConvertOptions options = OptionsOf(command);
    if (command.four_state && format != "vcd") {
        throw Failure("--four-state is for VCD files");
    }
    const auto recording = OpenRecording(command.input, command.time_unit);
    const auto signals = SelectWhole(*recording, command);
    OutputFile output(name, {command.input});
    Progress progress("writing " + name);
    const std::int64_t end =
        std::min(options.end.value_or(recording->LatestTime()), recording->LatestTime());
    options.progress = [&](std::int64_t time) {
        progress.Tell(static_cast<double>(time - options.start),
                      static_cast<double>(end - options.start));
    };
    try {
        (format == "evt" ? host::WriteEventFile : host::WriteVcdFile)(*recording, signals,
                                                                      output.path(), options);
    } catch (const std::runtime_error& error) {
        throw Failure(output.Complaint(error.what()));
    }
    output.Commit();
    progress.Clear();
    if (!command.quiet) {
        for (const std::string& note : recording->Notes()) {
            WriteMessage("note", note);
        }
    }
    return kFine;
}

}  // namespace

void AddConvert(CLI::App& program, Action& chosen) {
    CLI::App* command = program.add_subcommand(
        "convert",
        "write a recording in another format\n"
        "Reads a recording of any format and writes it as an event file, which opens at once "
        "however large it is, or as a value change dump for other tools. The format is told by "
        "the suffix of the output, .evt or .vcd. What had to be repaired or was lost when the "
        "recording was read is told as notes.");
    auto options = std::make_shared<ConvertCommand>();
    command->add_option("IN", options->input, "The recording to read")->required();
    command->add_option("OUT", options->output, "The file to write; - for standard output");
    AddText(*command, "-o,--output", "FILE", options->other_output,
            "The file to write, in place of OUT");
    command->add_option("-n,--name", options->names, "Only signals of that name or pattern")
        ->type_name("GLOB")
        ->allow_extra_args(false);
    AddTime(*command, "-s,--start", options->start,
            "Where the part to write starts, with the values that the signals have there");
    AddTime(*command, "-e,--end", options->end, "Where it ends; changes at that time are written");
    AddChoice(*command, "--format", "evt|vcd", "The format to write, whatever the suffix",
              [options = options.get()](const std::string& word) { options->format = word; });
    command->add_flag("--four-state", options->four_state,
                      "Write 0, 1, x and z only, for tools that don't know the other values");
    AddRecordingUnit(*command, options->time_unit);
    command->add_flag("-q,--quiet", options->quiet, "Leave the notes out");
    command->footer(
        "corv convert run.ghw run.evt\n"
        "corv convert run.vcd.gz part.vcd -n 'tb.cpu.**' -s 10us -e 20us");
    command->callback([&chosen, options] { chosen = [options] { return RunConvert(*options); }; });
}

}  // namespace corv::cli
