#pragma once

#include <span>
#include <string>

#include "cli/description.h"

// Words on the command line that are not where they belong.
namespace corv::cli {

// A sentence about a time or a formula that the shell has cut into words, as quotes were missing:
// -e 10 ns, -f 0 0, 1 5ns. Empty when there is none.
std::string CutIntoWords(std::span<const char* const> arguments);

// A sentence about a word that the command does not take, with where it belongs. `file` is what the
// command takes as its recording, if anything.
std::string UnknownWord(const CommandInfo& command, const std::string& word,
                        const std::string& file);

}  // namespace corv::cli
