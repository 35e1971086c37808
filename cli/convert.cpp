#include <algorithm>
#include <filesystem>
#include <memory>
#include <stdexcept>

#include "cli/command.h"
#include "cli/options.h"
#include "cli/output.h"
#include "cli/progress.h"
#include "cli/recordings.h"
#include "cli/suggestion.h"
#include "host/convert.h"
#include "host/time_text.h"

namespace corv::cli {
namespace {

struct ConvertCommand {
    std::string input, output, format;
    std::vector<std::string> names;
    std::optional<std::int64_t> start, end;
    std::optional<unsigned> time_unit;
    bool four_state = false;
    bool quiet = false;
};

// "evt" or "vcd"; throws Failure.
std::string FormatOf(const ConvertCommand& command) {
    if (!command.format.empty()) {
        return command.format;
    }
    std::string suffix = std::filesystem::path(command.output).extension().string();
    std::transform(suffix.begin(), suffix.end(), suffix.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (suffix == ".evt" || suffix == ".vcd") {
        return suffix.substr(1);
    }
    throw Failure("`" + command.output +
                  "` tells no format; end its name in .evt or .vcd, or name one with --format");
}

host::ConvertOptions OptionsOf(const ConvertCommand& command) {
    host::ConvertOptions options;
    options.start = command.start.value_or(0);
    options.end = command.end;
    options.four_state = command.four_state;
    if (options.start < 0) {
        throw Failure("--start lies before 0");
    }
    if (options.end && *options.end < options.start) {
        throw Failure("the window ends at " + host::TimeText(*options.end) +
                      ", before its start at " + host::TimeText(options.start));
    }
    return options;
}

std::vector<host::NamedSignal> SelectWhole(const host::Recording& recording,
                                           const ConvertCommand& command) {
    std::vector<host::NamedSignal> selected = SelectNamed(recording, command.names);
    for (const host::NamedSignal& named : selected) {
        if (named.slice) {
            throw Failure("a slice can't be converted: " + named.name +
                          "; name the whole vector, or its elements");
        }
    }
    if (selected.empty()) {
        throw Failure(command.input + " has no signals");
    }
    return selected;
}

int RunConvert(const ConvertCommand& command) {
    const std::string format = FormatOf(command);
    host::ConvertOptions options = OptionsOf(command);
    if (command.four_state && format != "vcd") {
        throw Failure("--four-state is for VCD files");
    }
    const auto recording = OpenRecording(command.input, command.time_unit);
    const auto signals = SelectWhole(*recording, command);
    Progress progress("writing " + command.output);
    const std::int64_t end =
        std::min(options.end.value_or(recording->LatestTime()), recording->LatestTime());
    options.progress = [&](std::int64_t time) {
        progress.Tell(static_cast<double>(time - options.start),
                      static_cast<double>(end - options.start));
    };
    try {
        (format == "evt" ? host::WriteEventFile : host::WriteVcdFile)(*recording, signals,
                                                                      command.output, options);
    } catch (const std::runtime_error& error) {
        throw Failure(error.what());
    }
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
    command->add_option("OUT", options->output, "The file to write")->required();
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
