#pragma once

#include <string>

#include "cli/command.h"

namespace corv::cli {

// Describes the program, its commands and their arguments. Parsing sets `chosen` to what the user
// asks for.
void DescribeProgram(CLI::App& program, Action& chosen);

// Returns what was wrong with the arguments, as a sentence with a suggestion if a known word is
// near.
std::string ArgumentComplaint(const CLI::App& program, const CLI::ParseError& error);

// Returns the last command on the command line, or the program itself if there is none.
const CLI::App& ChosenCommand(const CLI::App& program);

}  // namespace corv::cli
