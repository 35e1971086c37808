#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <stdexcept>

namespace corv::cli {

// The exit codes, as those of diff: nothing was found, something was found, the work could not be
// done.
enum ExitCode { kFine = 0, kFound = 1, kFailed = 2 };

// The reason why a command could not do its work, as a sentence; empty if it has been reported
// already.
class Failure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Does what the chosen command is for and returns the exit code; throws Failure.
using Action = std::function<int()>;

// Each of these adds its command to the program's description. If the user calls that command,
// parsing the arguments sets `chosen`, which outlives the description.
void AddDraw(CLI::App& program, Action& chosen);
void AddEvents(CLI::App& program, Action& chosen);
void AddRun(CLI::App& program, Action& chosen);
void AddInfo(CLI::App& program, Action& chosen);
void AddValueAt(CLI::App& program, Action& chosen);
void AddFind(CLI::App& program, Action& chosen);
void AddConvert(CLI::App& program, Action& chosen);
void AddFormula(CLI::App& program, Action& chosen);
void AddClock(CLI::App& program, Action& chosen);
void AddCounter(CLI::App& program, Action& chosen);
void AddSti(CLI::App& program, Action& chosen);
void AddStates(CLI::App& program, Action& chosen);
void AddMan(CLI::App& program, Action& chosen);
void AddCompletion(CLI::App& program, Action& chosen);
// This must be the last one, since it lists the commands added before it.
void AddHelp(CLI::App& program, Action& chosen);

}  // namespace corv::cli
