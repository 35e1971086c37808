#include <csignal>
#include <new>

#include "cli/command.h"
#include "cli/description.h"
#include "cli/output.h"
#include "cli/program.h"
#include "cli/suggestion.h"
#include "cli/wrong_words.h"

namespace corv::cli {
namespace {

[[noreturn]] void RefuseWithoutCommand(const CommandInfo& command) {
    std::vector<std::string> names;
    for (const CommandInfo& inner : command.commands) {
        names.push_back(inner.name);
    }
    throw Failure("a command is missing; expected " + Alternatives(names) + ", see `" +
                  command.path + " --help`");
}

int Run(int argc, const char* const* argv) {
    if (std::string cut = CutIntoWords({argv, static_cast<std::size_t>(argc)}); !cut.empty()) {
        throw Failure(cut);
    }
    CLI::App program;
    Action chosen;
    DescribeProgram(program, chosen);
    try {
        program.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        WriteOutput("", FormatHelp(Describe(ChosenCommand(program))));
        return kFine;
    } catch (const CLI::CallForVersion& version) {
        WriteOutput("", std::string(version.what()) + "\n");
        return kFine;
    } catch (const CLI::ParseError& error) {
        throw Failure(ArgumentComplaint(program, error));
    }
    if (!chosen) {
        RefuseWithoutCommand(Describe(ChosenCommand(program)));
    }
    return chosen();
}

}  // namespace
}  // namespace corv::cli

int main(int argc, char** argv) {
    using namespace corv::cli;
    std::signal(SIGPIPE, SIG_DFL);  // a reader that stops, as head does, ends the program quietly
    std::signal(SIGXFSZ, SIG_IGN);  // a file over the size limit is reported as an error of writing
    try {
        return Run(argc, argv);
    } catch (const Failure& failure) {
        if (*failure.what() != '\0') {
            WriteMessage("error", failure.what());
        }
    } catch (const std::bad_alloc&) {
        WriteMessage("error", "out of memory");
    } catch (const std::exception& error) {
        WriteMessage("error", error.what());
    }
    return kFailed;
}
