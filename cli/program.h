#pragma once

#include <string>

#include "cli/command.h"

namespace corv::cli {

// Describes the program, its commands and their arguments; what the user chooses goes to `chosen`.
void DescribeProgram(CLI::App& program, Action& chosen);

// What was wrong with the arguments, as a sentence with a suggestion where one is near.
std::string ArgumentComplaint(const CLI::App& program, const CLI::ParseError& error);

// The last command on the command line, the program itself when there is none.
const CLI::App& ChosenCommand(const CLI::App& program);

}  // namespace corv::cli
