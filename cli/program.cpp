#include "cli/program.h"

#include "cli/description.h"
#include "cli/suggestion.h"
#include "cli/wrong_words.h"
#include "corv/version.h"

namespace corv::cli {
namespace {

constexpr void (*kCommands[])(CLI::App&, Action&) = {
    AddDraw,  AddEvents,  AddRun, AddInfo,   AddValueAt, AddFind,       AddConvert, AddFormula,
    AddClock, AddCounter, AddSti, AddStates, AddMan,     AddCompletion, AddHelp,
};

// Returns the first argument that no command took.
std::string LeftOver(const CLI::App& program) {
    for (const std::string& word : program.remaining(true)) {
        if (word != "--") {
            return word;
        }
    }
    return {};
}

std::string UnknownOption(const CommandInfo& command, const std::string& word) {
    const std::string name = word.substr(0, word.find('='));
    std::vector<std::string> names;
    for (const OptionInfo& option : command.options) {
        names.push_back(option.long_name);
    }
    if (name.find(' ') != std::string::npos) {
        return "`" + name + "` is not an option; write -- before a text that begins with -";
    }
    return "unknown option `" + name + "`" + Suggestion(name, names);
}

// Returns what the command takes as its recording; empty if it takes none or none is given.
std::string FileOf(const CLI::App& command) {
    const CLI::Option* const file = command.get_option_no_throw("FILE");
    return file != nullptr && file->count() > 0 ? file->results().front() : "";
}

}  // namespace

void DescribeProgram(CLI::App& program, Action& chosen) {
    program.name("corv");
    program.description("waveforms and stimuli for VHDL simulation");
    program.set_help_flag("-h,--help", "Show this help");
    program.set_version_flag("-V,--version", std::string("corv ") + Version(), "Show the version");
    program.footer(
        "corv draw -f clk='0 0, 1 5ns -r 10ns' -f rst='1 0, 0 @23ns'\n"
        "corv events -f '0 0, 1 10ns -r 20ns' -e 100ns --csv\n"
        "corv formula check '0 0, 1 10ns'\n"
        "corv clock --freq 100MHz");
    program.require_subcommand(0, 1);  // further words are operands, even "draw"
    for (const auto add : kCommands) {
        add(program, chosen);
    }
}

const CLI::App& ChosenCommand(const CLI::App& program) {
    const auto commands =
        program.get_subcommands([](const CLI::App* command) { return command->parsed(); });
    return commands.empty() ? program : ChosenCommand(*commands.back());
}

std::string ArgumentComplaint(const CLI::App& program, const CLI::ParseError& error) {
    const CommandInfo command = Describe(ChosenCommand(program));
    const std::string word = LeftOver(program);
    if (word.size() > 1 && word.front() == '-') {
        return UnknownOption(command, word);
    }
    if (!word.empty()) {
        return UnknownWord(command, word, FileOf(ChosenCommand(program)));
    }
    std::string what = error.what();
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&error)) {
        return "`" + what.substr(0, what.find(':')) + "` needs a value";
    }
    return what;
}

}  // namespace corv::cli
