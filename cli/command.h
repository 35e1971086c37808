#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <stdexcept>

namespace corv::cli {

// As diff: nothing found or all equal, something found, could not be done.
enum ExitCode { kFine = 0, kFound = 1, kFailed = 2 };

// Why a command could not do its work, as a sentence; empty when it was told already.
class Failure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// What the chosen command does; it gives the exit code and throws Failure.
using Action = std::function<int()>;

// Each adds its command to the program's description; when the user calls it, parsing the
// arguments sets `chosen`, which outlives the description.
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
// The last one: it knows the commands before it.
void AddHelp(CLI::App& program, Action& chosen);

}  // namespace corv::cli
